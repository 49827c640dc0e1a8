// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

// A day in the Chinese calendar: the year of the sixty-year cycle, the month and the day, each
// missing when the calendar cannot tell it.
struct ChineseDate {
    std::optional<int> year;
    std::optional<int> month;
    std::optional<int> day;

    // The day of the moment `secondsSince1970`, in the current time zone.
    static ChineseDate of(double secondsSince1970);

    // A missing component equals only another missing one.
    bool operator==(const ChineseDate&) const = default;
};
