#pragma once
// What the browser lists: the preset list of a bank or a category, the user's favourites, or what a
// search finds in all banks. No drawing.

#include "editor/EditorShell.h"
#include "editor/PresetSearch.h"

#include <string>
#include <vector>

namespace tolm {

class CBrowserModel {
public:
    explicit CBrowserModel(EditorShell& shell) : shell_(shell) {}

    struct Row {
        int program;
        int position; // in the preset list, -1 in favourites and hits
        std::string label;
        bool favourite;
    };

    // Reads the programs and lists anew.
    void read();
    const std::vector<Row>& rows() const { return rows_; }
    // The row of the current program, or -1.
    int currentRow() const;
    // Makes a row's program the current one; others do nothing.
    void choose(int row);
    void toggleFavourite(int row);

    // Words in names, categories and descriptions of all 384 programs; empty ends the search.
    void search(const std::string& text);
    bool isSearching() const;
    // Favourites of all banks, or back to the preset list.
    void showFavourites(bool show);
    bool showsFavourites() const { return favourites_; }
    // 0..2, with all of its categories.
    void showBank(int bank);
    // 1..13 of all banks; 0 the whole bank.
    void showCategory(int category);
    int category() const;

private:
    EditorPort& port() const { return shell_.context.port(); }
    void list();
    void addRow(int program, int position);

    EditorShell& shell_;
    PresetSearch search_;
    std::string text_;
    std::vector<Row> rows_;
    bool favourites_ = false;
};

} // namespace tolm
