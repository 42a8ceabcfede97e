// The dialogs of Dialogs.inc as tables, for systems whose modules have no resources.
#pragma once

#include <roots/platform/Win32.h>

#include <iterator>

namespace progress {

// clang-format off
#define DIALOG(id, width, height, style) constexpr platform::DialogItem kItemsOf##id[] = {
#define DIALOG_EX DIALOG
#define ITEM(text, id, style, exStyle, x, y, width, height) {L##text, id, style},
#define END_DIALOG };
// clang-format on

#include <roots/progress/Dialogs.inc>

#undef DIALOG
#undef ITEM
#undef END_DIALOG
#define DIALOG(id, width, height, style) {id, style, kItemsOf##id, std::size(kItemsOf##id)},
#define ITEM(...)
#define END_DIALOG

constexpr platform::DialogTemplate kDialogs[] = {
#include <roots/progress/Dialogs.inc>
};

#undef DIALOG
#undef DIALOG_EX
#undef ITEM
#undef END_DIALOG

}  // namespace progress
