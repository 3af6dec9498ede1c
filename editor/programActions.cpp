#include "editor/programActions.h"

#include "editor/matrixRows.h"
#include "editor/recordText.h"
#include "patch/chunkRecord.h"
#include "patch/soundText.h"

#include <algorithm>
#include <array>

namespace tolm {

namespace {

constexpr std::size_t kLongestText = 65536;

void replaceCurrent(EditorPort& port, EditHistory& history, std::string_view label,
                    const ProgramRecord& record)
{
    const EditGesture gesture(history, label);
    history.noteProgram(port.currentProgram());
    port.replaceCurrent(record);
    port.updateHostDisplay();
}

void writeRows(EditorPort& port, EditHistory& history, std::string_view label,
               const MatrixRows& rows)
{
    const EditGesture gesture(history, label);
    writeMatrix(port, history, rows);
    port.reapplyProgram();
}

} // namespace

void initProgram(EditorPort& port, EditHistory& history)
{
    replaceCurrent(port, history, "Init Program", port.initialRecord());
}

void revertProgram(EditorPort& port, EditHistory& history)
{
    const ProgramRecord& factory = port.factoryRecord(port.currentProgram());
    if (!sameRecord(port.record(port.currentProgram()), factory))
        replaceCurrent(port, history, "Revert Program", factory);
}

void revertAllPrograms(EditorPort& port, EditHistory& history)
{
    const EditGesture gesture(history, "Revert All Programs");
    for (int program = 0; program < kProgramCount; ++program) {
        if (sameRecord(port.record(program), port.factoryRecord(program)))
            continue;
        history.noteProgram(program);
        port.replaceProgram(program, port.factoryRecord(program));
    }
    port.updateHostDisplay();
}

void renameProgram(EditorPort& port, EditHistory& history, std::string_view name)
{
    const EditGesture gesture(history, "Rename Program");
    history.noteProgram(port.currentProgram());
    port.setProgramName(name);
    port.updateHostDisplay();
}

std::optional<std::string> programText(const ProgramRecord& record)
{
    const int category = truncated(record.values[static_cast<std::size_t>(kPatchCategory)]);
    std::string text;
    if (category < 0 || category >= kCategoryCount ||
        writeSounds(std::span(&record, 1), blankRecord(), category, text))
        return std::nullopt;
    return text;
}

std::optional<ProgramRecord> readProgram(std::string_view text)
{
    std::vector<Sound> sounds;
    if (text.size() > kLongestText || readSounds(text, "clipboard", blankRecord(), sounds) ||
        sounds.size() != 1)
        return std::nullopt;
    return sounds.front().record;
}

bool pasteText(EditorPort& port, EditHistory& history, std::string_view text)
{
    if (const std::optional<ArpPattern> pattern = readPattern(text)) {
        port.softAllNotesOff();
        applyPattern(port, history, *pattern);
        return true;
    }
    const std::optional<ProgramRecord> program = readProgram(text);
    if (program)
        replaceCurrent(port, history, "Paste Program", *program);
    return program.has_value();
}

void applyPattern(EditorPort& port, EditHistory& history, const ArpPattern& pattern)
{
    const EditGesture gesture(history, "Arp Pattern");
    for (std::size_t i = 0; i < kArpPatternIds.size(); ++i) {
        history.noteValue(kArpPatternIds[i]);
        port.setParameter(kArpPatternIds[i], pattern.values[i]);
    }
}

void resetPattern(EditorPort& port, EditHistory& history)
{
    applyPattern(port, history, patternOf(port.initialRecord()));
}

void moveMatrixRow(EditorPort& port, EditHistory& history, int from, int to)
{
    MatrixRows rows = matrixOf(port);
    exchangeMatrixRows(rows, from, to);
    writeRows(port, history, "Move Matrix Row", rows);
}

void clearMatrixRow(EditorPort& port, EditHistory& history, int row)
{
    if (row < 0 || row >= kMatrixRows)
        return;
    MatrixRows rows = matrixOf(port);
    rows[static_cast<std::size_t>(row)] = {};
    writeRows(port, history, "Clear Matrix Row", rows);
}

void moveEffect(EditorPort& port, EditHistory& history, int from, int to)
{
    const auto isSlot = [](int slot) { return slot >= 0 && slot < kEffectSlots; };
    if (!isSlot(from) || !isSlot(to) || from == to)
        return;
    std::array<float, kEffectSlots> order;
    for (int slot = 0; slot < kEffectSlots; ++slot)
        order[static_cast<std::size_t>(slot)] = port.value(kEffectOrder1 + slot);
    if (from < to)
        std::rotate(order.begin() + from, order.begin() + from + 1, order.begin() + to + 1);
    else
        std::rotate(order.begin() + to, order.begin() + from, order.begin() + from + 1);
    const EditGesture gesture(history, "Move Effect");
    for (int slot = std::min(from, to); slot <= std::max(from, to); ++slot) {
        history.noteValue(kEffectOrder1 + slot);
        port.setParameterQuiet(kEffectOrder1 + slot, order[static_cast<std::size_t>(slot)]);
    }
}

} // namespace tolm
