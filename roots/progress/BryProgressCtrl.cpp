#include <roots/progress/BryProgressCtrl.h>

// Windows may append and remove windows on the way: each position is looked up when it is its turn.
template <class Call>
void BryProgressCtrl::forEachWindow(Call call) {
    const long count = m_ProgressCtrlWindowController ? m_ProgressCtrlWindowController->m_windows.length() : 0;
    for (long i = 0; i < count; ++i) {
        BryProgressCtrlWindow* const window = m_ProgressCtrlWindowController->m_windows[i];
        if (window != nullptr) call(*window);
    }
}

template <class Call>
int BryProgressCtrl::countOf(Call call) {
    int count = 0;
    forEachWindow([&](BryProgressCtrlWindow& window) {
        if (window.getOn() != 0 && call(window) != 0) ++count;
    });
    return count;
}

BryProgressCtrlWindow* BryProgressCtrl::firstThatIsOn() {
    BryProgressCtrlWindow* first = nullptr;
    forEachWindow([&](BryProgressCtrlWindow& window) {
        if (first == nullptr && window.getOn() != 0) first = &window;
    });
    return first;
}

int BryProgressCtrl::activate(BryString title) {
    return countOf([&](BryProgressCtrlWindow& window) { return window.activate(title); });
}

int BryProgressCtrl::reset() {
    return countOf([](BryProgressCtrlWindow& window) { return window.reset(); });
}

int BryProgressCtrl::setTitle(const BryString& title) {
    return countOf([&](BryProgressCtrlWindow& window) { return window.setTitle(title); });
}

int BryProgressCtrl::setPercentage(int percent, int force) {
    return countOf([=](BryProgressCtrlWindow& window) { return window.setPercentage(percent, force); });
}

int BryProgressCtrl::getTitle(BryString& title) {
    BryProgressCtrlWindow* const window = firstThatIsOn();
    if (window == nullptr) return 0;
    window->getTitle(title);
    return 1;
}

int BryProgressCtrl::getPercentage(int& percent) {
    BryProgressCtrlWindow* const window = firstThatIsOn();
    if (window == nullptr) return 0;
    window->getPercentage(percent);
    return 1;
}

int BryProgressCtrl::isActive(int switchOnFirst) {
    const int count = countOf([](BryProgressCtrlWindow& window) { return window.isActive(); });
    if (count == 0 && switchOnFirst != 0 && m_ProgressCtrlWindowController != nullptr) {
        m_ProgressCtrlWindowController->m_defaultWindow.switchOn();
        m_ProgressCtrlWindowController->m_defaultWindow.setActivity(1);
    }
    return count;
}

int BryProgressCtrl::appendOutputWindow(BryProgressCtrlWindow* window) {
    forEachWindow([](BryProgressCtrlWindow& listed) { listed.switchOff(); });
    return m_ProgressCtrlWindowController ? m_ProgressCtrlWindowController->appendOutputWindow(window) : -1;
}

int BryProgressCtrl::removeOutputWindow(BryProgressCtrlWindow* window) {
    return m_ProgressCtrlWindowController ? m_ProgressCtrlWindowController->removeOutputWindow(window) : -1;
}
