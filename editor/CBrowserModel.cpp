#include "editor/CBrowserModel.h"

#include <algorithm>

namespace tolm {

void CBrowserModel::read()
{
    search_.read(port());
    list();
}

bool CBrowserModel::isSearching() const
{
    return text_.find_first_not_of(' ') != std::string::npos;
}

void CBrowserModel::addRow(int program, int position)
{
    std::string name = port().record(program).name.data();
    const bool favourite = shell_.favourites.has(name);
    rows_.push_back({program, position, std::move(name), favourite});
}

void CBrowserModel::list()
{
    rows_.clear();
    if (isSearching()) {
        for (const int program : search_.find(text_))
            addRow(program, -1);
    } else if (!favourites_) {
        const PresetBrowser browser = port().browser();
        for (int position = 0; position < kPresetListSize; ++position)
            if (const int program = browser.presetListIndex[static_cast<std::size_t>(position)];
                program >= 0)
                addRow(program, position);
        return;
    } else {
        for (int program = 0; program < kProgramCount; ++program)
            addRow(program, -1);
    }
    if (favourites_)
        std::erase_if(rows_, [](const Row& row) { return !row.favourite; });
}

int CBrowserModel::currentRow() const
{
    const int current = port().currentProgram();
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [current](const Row& row) { return row.program == current; });
    return found != rows_.end() ? static_cast<int>(found - rows_.begin()) : -1;
}

void CBrowserModel::choose(int row)
{
    if (row < 0 || row >= static_cast<int>(rows_.size()))
        return;
    const Row chosen = rows_[static_cast<std::size_t>(row)];
    if (chosen.position >= 0)
        shell_.context.actions().controlChanged(kTagPresetList,
                                                static_cast<float>(chosen.position));
    else
        port().setProgram(chosen.program);
}

void CBrowserModel::toggleFavourite(int row)
{
    if (row < 0 || row >= static_cast<int>(rows_.size()))
        return;
    Row& toggled = rows_[static_cast<std::size_t>(row)];
    toggled.favourite = !toggled.favourite;
    shell_.favourites.set(toggled.label, toggled.favourite);
    shell_.tellProgram();
}

void CBrowserModel::search(const std::string& text)
{
    text_ = text;
    list();
}

void CBrowserModel::showFavourites(bool show)
{
    favourites_ = show;
    list();
}

void CBrowserModel::showBank(int bank)
{
    favourites_ = false;
    Actions& actions = shell_.context.actions();
    if (category() != 0)
        actions.controlChanged(kTagCategory, 0.0f);
    actions.controlChanged(kTagBank, static_cast<float>(bank) / 2.0f);
    list();
}

void CBrowserModel::showCategory(int category)
{
    favourites_ = false;
    shell_.context.actions().controlChanged(kTagCategory, static_cast<float>(category));
    list();
}

int CBrowserModel::category() const
{
    return port().browser().categoryFilter;
}

} // namespace tolm
