// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakScreen.h"

#include "AppState.h"
#include "CycleEvents.h"

bool BreakScreen::show()
{
    if (!showWindows())
        return false;
    emit AppState::events().changed();
    return true;
}

void BreakScreen::close()
{
    closeWindows();
    emit AppState::events().changed();
}
