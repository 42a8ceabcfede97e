// A window that shows how far a long operation has come: a title, a bar and a percentage.
#pragma once

#include <roots/Export.h>
#include <roots/text/BryString.h>

// The library's own window is a small modeless dialog. Classes derived from this one show progress in another way: they
// override any of the five virtual operations, and BryProgressCtrl calls the overrides, once they are appended there.
//
// A window is idle or showing, and on or off: only windows that are on are addressed by BryProgressCtrl. Its percentage
// lies in 0 .. 100 and moves forward, unless forced.
//
// The library tracks one dialog and its bar. Where two windows show a dialog of their own at the same time, the calls
// of both reach the one that came up last, and the other stays up until the process ends. A dialog that the user has
// closed, or that somebody else has destroyed, counts as showing until reset; calls meanwhile are harmless. So are
// calls of a window that counts as showing without a dialog, as after setActivity, BryProgressCtrl::isActive or
// copying.
//
// The host registers the progress bar's class (InitCommonControls); where it has not, the box "Progress Bar not
// created!" says so and the dialog does without the bar. The dialog needs the message loop of the thread that calls.
//
// On Linux the dialog lives in memory, where FindWindowW, GetDlgItem, GetDlgItemTextW and SendMessageW look at it, and
// is drawn as a line on the error stream where that is a terminal; roots/platform/Win32.h says how. Numbers of its
// controls everywhere: 1001 the bar, 1002 the title, 1003 the percentage.
//
// Titles have any length; the dialog shows as much as fits. When memory is out, std::bad_alloc passes through and the
// window keeps its title.
class KELROOTS_API BryProgressCtrlWindow {
public:
    // Off, idle, without a title, at 0.
    BryProgressCtrlWindow() noexcept = default;

    // Copies are on, showing and at a percentage as the other window is, with a title of their own.
    BryProgressCtrlWindow(const BryProgressCtrlWindow& other);
    const BryProgressCtrlWindow& operator=(const BryProgressCtrlWindow& other);

    // Closes no dialog, and takes the window out of no list: BryProgressCtrl::removeOutputWindow does.
    virtual ~BryProgressCtrlWindow();

    // Closes what is up by reset, the override where there is one, and shows a new dialog with that title. Whether it
    // is showing now: 1 or 0.
    virtual int activate(BryString title);

    // Closes the dialog; idle, at 0. The title stays. Always 1.
    virtual int reset();

    // Sets the percentage. 0 where percent is refused: outside 0 .. 100, where it is already, or below that unless
    // force is not 0. Otherwise whether it is showing; an idle window remembers the percentage.
    virtual int setPercentage(int percent, int force);

    // Sets the title, which an idle window remembers. Whether it is showing.
    virtual int setTitle(const BryString& title);

    // Give out the title, empty where none was set, and the percentage. Whether it is showing.
    int getTitle(BryString& title);
    int getPercentage(int& percent);

    // Whether it is showing: 1 or 0, or what setActivity was given.
    int isActive() { return m_activity; }
    int getActivity() const { return m_activity; }
    void setActivity(int activity) { m_activity = activity; }

    void switchOn() { m_on = 1; }
    void switchOff() { m_on = 0; }
    int getOn() const { return m_on; }

private:
    void keepTitle(const wchar_t* title);

    int m_on = 0;
    wchar_t* m_title = nullptr;
    int m_percentage = 0;
    int m_activity = 0;
};
