// The keys of zynphone top.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace zyn::tool {

enum class Key : uint8_t { Quit, Up, Down, PageUp, PageDown, Home, End };

/// The keys whose bytes, as a terminal sends them, are in @p input; what is none of them is passed over.
std::vector<Key> keysIn(std::string_view input);

/// How far @p key scrolls a text of which @p scrolled lines are above the screen of @p rows rows: the number above it
/// then, which may be beyond the text's end.
int scrolledBy(Key key, int scrolled, int rows);

} // namespace zyn::tool
