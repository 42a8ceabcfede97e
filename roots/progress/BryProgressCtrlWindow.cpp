#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/progress/BryProgressCtrlWindow.h>
#include <roots/progress/ProgressDialog.h>

#include <utility>

namespace {

wchar_t* copyOf(const wchar_t* text) {
    if (text == nullptr) return nullptr;
    const std::size_t size = wide::length(text) + 1;
    wchar_t* const copy = new wchar_t[size];
    wide::copy(copy, text, size);
    return copy;
}

}  // namespace

BryProgressCtrlWindow::BryProgressCtrlWindow(const BryProgressCtrlWindow& other)
    : m_on(other.m_on),
      m_title(copyOf(other.m_title)),
      m_percentage(other.m_percentage),
      m_activity(other.m_activity) {}

const BryProgressCtrlWindow& BryProgressCtrlWindow::operator=(const BryProgressCtrlWindow& other) {
    if (this == &other) return *this;
    keepTitle(other.m_title);
    m_on = other.m_on;
    m_percentage = other.m_percentage;
    m_activity = other.m_activity;
    return *this;
}

BryProgressCtrlWindow::~BryProgressCtrlWindow() { delete[] m_title; }

void BryProgressCtrlWindow::keepTitle(const wchar_t* title) { delete[] std::exchange(m_title, copyOf(title)); }

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts call it with a value of their own
int BryProgressCtrlWindow::activate(BryString title) {
    reset();
    keepTitle(title.getStringW());
    g_hProgressDialog =
        CreateDialogParamW(g_hInstance, MAKEINTRESOURCEW(progress::kDialog), nullptr, progress::progressDialogProc, 0);
    m_activity = g_hProgressDialog != nullptr ? 1 : 0;
    if (m_activity != 0) {
        SetDlgItemTextW(g_hProgressDialog, progress::kTitle, m_title);
        ShowWindow(g_hProgressDialog, SW_SHOW);
    }
    return m_activity;
}

int BryProgressCtrlWindow::reset() {
    if (m_activity != 0) {
        DestroyWindow(g_hProgressDialog);
        g_hProgressDialog = nullptr;
    }
    m_percentage = 0;
    m_activity = 0;
    return 1;
}

int BryProgressCtrlWindow::setPercentage(int percent, int force) {
    if (percent < 0 || percent > 100 || percent == m_percentage || (percent < m_percentage && force == 0)) return 0;
    m_percentage = percent;
    if (m_activity != 0) progress::showPercentage(percent);
    return m_activity;
}

int BryProgressCtrlWindow::setTitle(const BryString& title) {
    keepTitle(title.getStringW());
    if (m_activity != 0) SetDlgItemTextW(g_hProgressDialog, progress::kTitle, m_title);
    return m_activity;
}

int BryProgressCtrlWindow::getTitle(BryString& title) {
    title = m_title;
    return m_activity;
}

int BryProgressCtrlWindow::getPercentage(int& percent) {
    percent = m_percentage;
    return m_activity;
}
