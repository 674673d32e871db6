#pragma once
// Where a text or a row appears: on the screen, on paper, or on both. Entry
// screens and result sheets word some things differently on each.

#include <cstdint>

namespace zelmor {

enum class Medium : std::uint8_t { Both, Screen, Paper };
inline bool onScreen(Medium m) { return m != Medium::Paper; }
inline bool onPaper(Medium m) { return m != Medium::Screen; }

}  // namespace zelmor
