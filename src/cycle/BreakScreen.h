// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the cycle asks of the break windows. The windows live above the cycle; the program
// installs them with AppState::setBreakScreen(). Without them no break can be shown, and the
// cycle goes on as it does when the break screen cannot be made.
class BreakScreen {
public:
    virtual ~BreakScreen() = default;

    // Opens the break on every screen; false, with nothing shown, when it cannot be made.
    bool show();
    void close();
    virtual bool isShown() const = 0;

protected:
    virtual bool showWindows() = 0;
    virtual void closeWindows() = 0;
};
