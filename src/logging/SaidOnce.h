// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A failure of the desktop around us goes into the log once, not at every try: the first line
// is written, later ones are not until forget() (the failure went away meanwhile).
class SaidOnce {
public:
    // Logs `line` at warning level unless something was said already; true when written now.
    bool warning(const QString& line);
    void forget() { m_said = false; }
    bool said() const { return m_said; }

private:
    bool m_said = false;
};
