// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Shows the program in the user's language (LANGUAGE, LC_ALL, LC_MESSAGES, LANG): our own
// texts from the translations built into the program, Qt's (standard buttons, --help) from
// the system's Qt translations. English, the language the texts are written in, needs none.
namespace Translations {

// Needs the application object; call before the first text is made.
void install();

} // namespace Translations
