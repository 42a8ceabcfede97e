// Texts for the user and for the debugger.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

class KELROOTS_API BryWinMessage {
public:
    // Shows the text in a box with the caption "Norrab", the information icon and an OK button, and waits until the
    // user has closed it. Elsewhere than on Windows caption and text go to the error stream, and the call waits for
    // Enter where both ends are a terminal.
    static void messageBox(const BryString& text);
};

// Takes a text meant for the debugger and shows it nowhere.
KELROOTS_API void BryOutputDebugString(const BryString& text);
