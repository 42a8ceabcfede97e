// What long operations report to: a title and a percentage, shown by whatever windows there are.
#pragma once

#include <roots/Export.h>
#include <roots/progress/BryProgressCtrlWindow.h>
#include <roots/progress/BryProgressCtrlWindowController.h>
#include <roots/text/BryString.h>

// Each call goes to every window of the list that is on, from the first position to the last that there was when the
// call began. The library's own dialog, at position 0, is on until a window is appended:
//
//     BryProgressCtrl::activate(L"Reading part files");
//     for (int i = 0; i < count; ++i) {
//         readPartFile(i);
//         BryProgressCtrl::setPercentage((i + 1) * 100 / count, 0);
//     }
//     BryProgressCtrl::reset();
//
// Windows may call back: switch themselves and others, append and remove. One that is appended meanwhile is reached by
// the next call, or by this one where it takes the place of one removed; one that is removed or switched off is not
// reached any more. What a window throws passes through, and those behind it are not reached.
//
// While the library is unloaded, the controller is gone for destructors that run late: the list counts as empty.
//
// All calls come from one thread.
class KELROOTS_API BryProgressCtrl {
public:
    BryProgressCtrl& operator=(const BryProgressCtrl&) { return *this; }

    // How many windows answered other than 0: for activate, setTitle and setPercentage those that are showing.
    static int activate(BryString title);
    static int reset();
    static int setTitle(const BryString& title);
    static int setPercentage(int percent, int force);

    // The title and the percentage of the first window that is on: 1. Where none is: 0, and the argument keeps its
    // value.
    static int getTitle(BryString& title);
    static int getPercentage(int& percent);

    // How many windows are on and showing. Where none is and switchOnFirst is not 0, the library's own window is
    // switched on and counts as showing from now on, without a dialog; activate gives it one.
    static int isActive(int switchOnFirst);

    // Switches every window of the list off, and adds this one at the end as it is: switch it on to have it reached.
    // Its position; a window that is in the list keeps the one that it has. Null: -1, with every window off.
    static int appendOutputWindow(BryProgressCtrlWindow* window);

    // Null when the library is unloaded.
    static BryProgressCtrlWindowController* m_ProgressCtrlWindowController;

    // Takes a window out of the list before it is destroyed; its own destructor may call it. The position that it had,
    // which stays empty while windows stand behind it; -1 for null, the library's own, and what is not in the list. No
    // window is switched on by this: isActive(1) does that for the library's own where it is wanted back.
    static int removeOutputWindow(BryProgressCtrlWindow* window);

private:
    template <class Call>
    static void forEachWindow(Call call);
    template <class Call>
    static int countOf(Call call);
    static BryProgressCtrlWindow* firstThatIsOn();
};
