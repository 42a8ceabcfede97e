#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/ProgressLine.h>

#include <algorithm>
#include <map>
#include <new>
#include <utility>
#include <vector>

namespace {

using namespace platform;

constexpr UINT kFont = 1;  // what WM_SETFONT tells a procedure, which can do nothing with it
constexpr std::uintptr_t kDialogAtom = 32770;

enum class Kind { eDialog, eStatic, eBar };

constexpr struct {
    const wchar_t* name;
    Kind kind;
} kControls[] = {{L"STATIC", Kind::eStatic}, {L"msctls_progress32", Kind::eBar}};

// What a progress bar knows. Positions lie in the range, as far as it has any.
class Bar {
public:
    LRESULT handle(UINT message, WPARAM first, LPARAM second);
    int percent() const;

private:
    LRESULT setRange(int low, int high);
    LRESULT range(bool low, PBRANGE* range) const;
    LRESULT moveTo(long long position);
    LRESULT moveOneStep();

    int m_low = 0, m_high = 100, m_position = 0, m_step = 10;
};

struct Window {
    Kind kind = Kind::eDialog;
    int id = 0;
    DWORD style = 0, exStyle = 0;
    HWND parent = nullptr;
    DLGPROC procedure = nullptr;
    std::vector<wchar_t> units;  // of the text, with the terminator; none for the empty text
    std::vector<HWND> children;
    Bar bar;
    bool isDying = false;

    const wchar_t* text() const { return units.empty() ? L"" : units.data(); }
    std::size_t length() const { return units.empty() ? 0 : units.size() - 1; }
};

// ---- the progress bar ----------------------------------------------------------------------------------------------

LRESULT Bar::handle(UINT message, WPARAM first, LPARAM second) {
    const auto number = [](auto parameter) { return static_cast<int>(static_cast<std::intptr_t>(parameter)); };
    switch (message) {
        case PBM_SETRANGE: return setRange(LOWORD(second), HIWORD(second));
        case PBM_SETRANGE32: return setRange(number(first), number(second));
        case PBM_GETRANGE: return range(first != 0, reinterpret_cast<PBRANGE*>(second));
        case PBM_SETPOS: return moveTo(number(first));
        case PBM_DELTAPOS: return moveTo(m_position + static_cast<long long>(number(first)));
        case PBM_STEPIT: return moveOneStep();
        case PBM_GETPOS: return m_position;
        case PBM_SETSTEP: return std::exchange(m_step, number(first));
        case PBM_GETSTEP: return m_step;
        default: return 0;
    }
}

int Bar::percent() const {
    const long long length = static_cast<long long>(m_high) - m_low;
    return length <= 0 ? 0 : static_cast<int>((static_cast<long long>(m_position) - m_low) * 100 / length);
}

// Both limits that were, in 16 bits each.
LRESULT Bar::setRange(int low, int high) {
    const DWORD before = MAKELONG(m_low, m_high);
    m_low = low;
    m_high = high;
    moveTo(m_position);
    return before;
}

LRESULT Bar::range(bool low, PBRANGE* range) const {
    if (range != nullptr) *range = {m_low, m_high};
    return low ? m_low : m_high;
}

LRESULT Bar::moveTo(long long position) {
    const long long within = std::min<long long>(std::max<long long>(position, m_low), m_high);
    return std::exchange(m_position, static_cast<int>(within));
}

// Past an end the bar starts over from the other one.
LRESULT Bar::moveOneStep() {
    const long long low = m_low, high = m_high, length = high - low;
    long long to = static_cast<long long>(m_position) + m_step;
    if (length <= 0) return m_position;
    if (to > high) to = low + (to - high) % length;
    if (to < low) to = high - (low - to) % length;
    return std::exchange(m_position, static_cast<int>(to));
}

// ---- the windows there are -----------------------------------------------------------------------------------------

// By handle, in the order of their creation.
std::map<std::uintptr_t, Window>& windows() {
    static auto& windows = *new std::map<std::uintptr_t, Window>;  // hosts' destructors may still ask
    return windows;
}

BOOL fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

HWND failWith(DWORD error) {
    SetLastError(error);
    return nullptr;
}

Window* find(HWND window) {
    const auto at = windows().find(reinterpret_cast<std::uintptr_t>(window));
    if (at != windows().end()) return &at->second;
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

BOOL setText(Window& window, const wchar_t* text) {
    if (text == nullptr) text = L"";
    try {
        window.units.assign(text, text + wide::length(text) + 1);
        return TRUE;
    } catch (const std::bad_alloc&) {
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    }
}

// A window with that text, last among its parent's children; null where memory is out.
HWND add(Window window, const wchar_t* text) {
    static std::uintptr_t lastHandle = 0x10000;  // what is below, hosts may take for other than a handle
    if (!setText(window, text)) return nullptr;
    const HWND handle = reinterpret_cast<HWND>(lastHandle += 2);
    Window* const parent = window.parent != nullptr ? find(window.parent) : nullptr;
    try {
        if (parent != nullptr) parent->children.push_back(handle);
        windows().emplace(lastHandle, std::move(window));
        return handle;
    } catch (const std::bad_alloc&) {
        if (parent != nullptr && !parent->children.empty() && parent->children.back() == handle)
            parent->children.pop_back();
        return failWith(ERROR_NOT_ENOUGH_MEMORY);
    }
}

// ---- drawing -------------------------------------------------------------------------------------------------------

HWND g_drawn = nullptr;

// Has the line show the window, if it is a visible dialog, as it is now.
void draw(HWND handle, const Window& dialog) {
    if (dialog.kind != Kind::eDialog || (dialog.style & WS_VISIBLE) == 0) return;
    const wchar_t *title = nullptr, *label = nullptr;
    int percent = -1;
    for (const HWND child : dialog.children) {
        const Window& control = windows().at(reinterpret_cast<std::uintptr_t>(child));
        if (control.kind == Kind::eBar) {
            percent = control.bar.percent();
        } else if (title == nullptr) {
            title = control.text();
        } else if (label == nullptr) {
            label = control.text();
        }
    }
    g_drawn = handle;
    showProgressLine(title != nullptr ? title : L"", percent, label != nullptr && percent < 0 ? label : L"");
}

void drawAround(HWND handle, const Window& window) {
    const HWND dialog = window.kind == Kind::eDialog ? handle : window.parent;
    if (const Window* const found = find(dialog)) draw(dialog, *found);
}

// ---- messages ------------------------------------------------------------------------------------------------------

LRESULT copyText(const Window& window, WPARAM capacity, wchar_t* buffer) {
    if (capacity == 0 || buffer == nullptr) return 0;
    const std::size_t length = std::min<std::size_t>(window.length(), capacity - 1);
    wide::copy(buffer, window.text(), length);
    buffer[length] = 0;
    return static_cast<LRESULT>(length);
}

// What a window does of its own accord, or a dialog where its procedure leaves a message alone.
LRESULT answerItself(HWND handle, Window& window, UINT message, WPARAM first, LPARAM second) {
    LRESULT answer = 0;
    switch (message) {
        case WM_GETTEXTLENGTH: return static_cast<LRESULT>(window.length());
        case WM_GETTEXT: return copyText(window, first, reinterpret_cast<wchar_t*>(second));
        case WM_SETTEXT: answer = setText(window, reinterpret_cast<const wchar_t*>(second)); break;
        case WM_CLOSE:
            if (window.kind == Kind::eDialog) {
                SendMessageW(handle, WM_COMMAND, IDCANCEL, 0);
            } else {
                DestroyWindow(handle);
            }
            return 0;
        default:
            if (window.kind != Kind::eBar) return 0;
            answer = window.bar.handle(message, first, second);
    }
    drawAround(handle, window);
    return answer;
}

void tellParent(HWND handle, const Window& window, UINT what) {
    if (window.parent == nullptr || (window.exStyle & WS_EX_NOPARENTNOTIFY) != 0 || find(window.parent)->isDying)
        return;
    SendMessageW(window.parent, WM_PARENTNOTIFY, MAKELONG(what, window.id), reinterpret_cast<LPARAM>(handle));
}

void hide(HWND handle, Window& window) {
    window.style &= ~WS_VISIBLE;
    if (g_drawn != handle) return;
    g_drawn = nullptr;
    hideProgressLine();
}

// Takes the window out of its parent and of the list.
void forget(HWND handle) {
    const HWND parent = find(handle)->parent;
    windows().erase(reinterpret_cast<std::uintptr_t>(handle));
    if (parent == nullptr) return;
    Window& around = *find(parent);
    around.children.erase(std::find(around.children.begin(), around.children.end(), handle));
    draw(parent, around);
}

// ---- creation ------------------------------------------------------------------------------------------------------

struct Dialogs {
    const DialogTemplate* first;
    std::size_t count;
};

std::map<HINSTANCE, Dialogs>& dialogs() {
    static auto& dialogs = *new std::map<HINSTANCE, Dialogs>;
    return dialogs;
}

const DialogTemplate* findTemplate(HINSTANCE module, const wchar_t* name) {
    const auto of = dialogs().find(module);
    if (of == dialogs().end()) return nullptr;
    const DialogTemplate* const end = of->second.first + of->second.count;
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    const auto at = std::find_if(of->second.first, end, [&](const DialogTemplate& d) { return d.id == number; });
    return at != end ? at : nullptr;
}

// The dialog with its controls, hidden and silent as yet.
HWND build(const DialogTemplate& from, DLGPROC procedure) {
    Window dialog;
    dialog.style = from.style & ~WS_VISIBLE;
    const HWND handle = add(std::move(dialog), L"");
    for (std::size_t i = 0; handle != nullptr && i < from.count; ++i) {
        Window control;
        control.kind = Kind::eStatic;
        control.id = from.items[i].id;
        control.style = from.items[i].style;
        control.exStyle = WS_EX_NOPARENTNOTIFY;
        control.parent = handle;
        if (add(std::move(control), from.items[i].text) != nullptr) continue;
        DestroyWindow(handle);
        return nullptr;
    }
    if (handle != nullptr) find(handle)->procedure = procedure;
    return handle;
}

// Not drawn yet: what shows a dialog says what is in it first.
void show(HWND handle) {
    Window* const window = find(handle);
    if (window == nullptr || (window->style & WS_VISIBLE) != 0) return;
    window->style |= WS_VISIBLE;
    SendMessageW(handle, WM_SHOWWINDOW, TRUE, 0);
}

}  // namespace

void platform::setDialogs(HINSTANCE module, const DialogTemplate* first, std::size_t count) {
    dialogs()[module] = {first, count};
}

HWND CreateDialogParamW(HINSTANCE module, const wchar_t* name, HWND, DLGPROC procedure, LPARAM param) {
    const DialogTemplate* const from = findTemplate(module, name);
    if (from == nullptr) return failWith(ERROR_RESOURCE_NAME_NOT_FOUND);
    const HWND handle = build(*from, procedure);
    if (handle == nullptr) return nullptr;
    SendMessageW(handle, WM_SETFONT, kFont, 0);
    const Window* dialog = find(handle);
    const HWND firstControl = dialog == nullptr || dialog->children.empty() ? nullptr : dialog->children.front();
    SendMessageW(handle, WM_INITDIALOG, reinterpret_cast<WPARAM>(firstControl), param);
    if ((from->style & WS_VISIBLE) != 0) show(handle);
    return find(handle) != nullptr ? handle : nullptr;
}

HWND CreateWindowExW(DWORD exStyle, const wchar_t* className, const wchar_t* text, DWORD style, int, int, int, int,
                     HWND parent, HMENU menu, HINSTANCE, void*) {
    const auto control = std::find_if(std::begin(kControls), std::end(kControls), [&](const auto& known) {
        return className != nullptr && _wcsicmp(known.name, className) == 0;
    });
    if (control == std::end(kControls)) return failWith(ERROR_CANNOT_FIND_WND_CLASS);
    if ((style & WS_CHILD) == 0 || parent == nullptr) return failWith(ERROR_TLW_WITH_WSCHILD);
    const Window* const owner = find(parent);
    if (owner == nullptr || owner->isDying) return failWith(ERROR_INVALID_WINDOW_HANDLE);
    Window window;
    window.kind = control->kind;
    window.id = static_cast<int>(reinterpret_cast<std::intptr_t>(menu));
    window.style = style;
    window.exStyle = exStyle;
    window.parent = parent;
    const HWND handle = add(std::move(window), text);
    if (handle == nullptr) return nullptr;
    tellParent(handle, *find(handle), WM_CREATE);
    return find(handle) != nullptr ? handle : nullptr;
}

BOOL DestroyWindow(HWND handle) {
    Window* window = find(handle);
    if (window == nullptr) return FALSE;
    if (!window->isDying) tellParent(handle, *window, WM_DESTROY);
    window = find(handle);
    if (window == nullptr || std::exchange(window->isDying, true)) return fail(ERROR_INVALID_WINDOW_HANDLE);
    hide(handle, *window);
    SendMessageW(handle, WM_DESTROY, 0, 0);
    while (!window->children.empty()) DestroyWindow(window->children.front());
    SendMessageW(handle, WM_NCDESTROY, 0, 0);
    forget(handle);
    return TRUE;
}

BOOL EndDialog(HWND dialog, INT_PTR) {
    Window* const window = find(dialog);
    if (window == nullptr || window->kind != Kind::eDialog) return fail(ERROR_INVALID_WINDOW_HANDLE);
    hide(dialog, *window);
    return TRUE;
}

BOOL ShowWindow(HWND handle, int command) {
    Window* window = find(handle);
    if (window == nullptr) return FALSE;
    const bool wasVisible = (window->style & WS_VISIBLE) != 0;
    if (command != SW_HIDE) {
        show(handle);
    } else if (wasVisible) {
        SendMessageW(handle, WM_SHOWWINDOW, FALSE, 0);
        if ((window = find(handle)) != nullptr) hide(handle, *window);
    }
    if ((window = find(handle)) != nullptr) drawAround(handle, *window);
    return wasVisible ? TRUE : FALSE;
}

BOOL SetDlgItemTextW(HWND dialog, int id, const wchar_t* text) {
    const HWND item = GetDlgItem(dialog, id);
    return item == nullptr ? FALSE
                           : static_cast<BOOL>(SendMessageW(item, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)));
}

HWND FindWindowW(const wchar_t* className, const wchar_t* text) {
    const auto number = reinterpret_cast<std::uintptr_t>(className);
    if (number > 0xFFFF ? _wcsicmp(className, L"#32770") != 0 : number != 0 && number != kDialogAtom) return nullptr;
    const auto at = std::find_if(windows().rbegin(), windows().rend(), [text](const auto& entry) {
        const Window& window = entry.second;
        return window.parent == nullptr && (text == nullptr || _wcsicmp(text, window.text()) == 0);
    });
    return at == windows().rend() ? nullptr : reinterpret_cast<HWND>(at->first);
}

HWND GetDlgItem(HWND dialog, int id) {
    const Window* const window = find(dialog);
    if (window == nullptr) return nullptr;
    for (const HWND child : window->children)
        if (find(child)->id == id) return child;
    return failWith(ERROR_CONTROL_ID_NOT_FOUND);
}

UINT GetDlgItemTextW(HWND dialog, int id, wchar_t* buffer, int capacity) {
    if (buffer == nullptr || capacity <= 0) return 0;
    *buffer = 0;
    const HWND item = GetDlgItem(dialog, id);
    if (item == nullptr) return 0;
    return static_cast<UINT>(
        SendMessageW(item, WM_GETTEXT, static_cast<WPARAM>(capacity), reinterpret_cast<LPARAM>(buffer)));
}

BOOL IsWindow(HWND window) { return find(window) != nullptr ? TRUE : FALSE; }

BOOL IsWindowVisible(HWND handle) {
    const Window* window = find(handle);
    while (window != nullptr && (window->style & WS_VISIBLE) != 0) {
        if (window->parent == nullptr) return TRUE;
        window = find(window->parent);
    }
    return FALSE;
}

LRESULT SendMessageW(HWND handle, UINT message, WPARAM first, LPARAM second) {
    Window* window = find(handle);
    if (window == nullptr) return 0;
    if (window->procedure != nullptr) {
        if (window->procedure(handle, message, first, second) != FALSE) return 0;
        if ((window = find(handle)) == nullptr) return 0;
    }
    return answerItself(handle, *window, message, first, second);
}
