// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChineseDate.h"

#include <memory>
#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

namespace {

std::optional<int> field(const icu::Calendar& calendar, UCalendarDateFields which)
{
    UErrorCode status = U_ZERO_ERROR;
    const int value = calendar.get(which, status);
    if (U_FAILURE(status))
        return std::nullopt;
    return value;
}

} // namespace

ChineseDate ChineseDate::of(double secondsSince1970)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(
        icu::TimeZone::detectHostTimeZone(), icu::Locale("@calendar=chinese"), status));
    if (U_FAILURE(status) || !calendar)
        return {};
    calendar->setTime(secondsSince1970 * 1000.0, status);
    if (U_FAILURE(status))
        return {};
    return {field(*calendar, UCAL_YEAR), field(*calendar, UCAL_MONTH), field(*calendar, UCAL_DATE)};
}
