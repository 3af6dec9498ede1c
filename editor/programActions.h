#pragma once
// Commands about whole programs, patterns and matrix rows that no control tag stands for. Each is
// one step of undo. User-interface thread.

#include "editor/EditHistory.h"
#include "editor/arpPattern.h"

#include <optional>
#include <string>
#include <string_view>

namespace tolm {

// The neutral program into the current place; its name too.
void initProgram(EditorPort& port, EditHistory& history);
// What the factory bank has at these places. Places that are equal already are left alone.
void revertProgram(EditorPort& port, EditHistory& history);
void revertAllPrograms(EditorPort& port, EditHistory& history);
void renameProgram(EditorPort& port, EditHistory& history, std::string_view name);

// A program as a readable sound text, as docs/sounds.md describes it. Nothing when it holds what
// the form has no words for.
std::optional<std::string> programText(const ProgramRecord& record);
// Nothing for a text that is not exactly one program.
std::optional<ProgramRecord> readProgram(std::string_view text);

// Puts a copied text where it belongs: a program over the current one, a pattern into it. False for
// any other text, which changes nothing.
bool pasteText(EditorPort& port, EditHistory& history, std::string_view text);
// Sets a pattern as the pattern menu does.
void applyPattern(EditorPort& port, EditHistory& history, const ArpPattern& pattern);
// The pattern of the initial program.
void resetPattern(EditorPort& port, EditHistory& history);

// Exchanges matrix rows 0..23, as a drag of one onto the other does; rows that scale one of them
// follow it.
void moveMatrixRow(EditorPort& port, EditHistory& history, int from, int to);
void clearMatrixRow(EditorPort& port, EditHistory& history, int row);

// Moves the effect at one slot 0..5 to another; those between make room.
void moveEffect(EditorPort& port, EditHistory& history, int from, int to);

} // namespace tolm
