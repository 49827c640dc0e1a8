// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A number as the log shows it: the shortest text that reads back to the same value,
// with ".0" for whole numbers (1500 → "1500.0", 2.5 → "2.5", 0.1 → "0.1").
QString numberText(double value);
