// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayList>

// Unmaps the read-only pages (code and constants) of libraries the process needs only now and
// then, such as SQLite for a history written a few times an hour. The pages stay in the
// system's file cache: the next use maps them back with a few minor page faults, microseconds,
// while in between they no longer count towards the process's memory. Writable pages, which
// hold the libraries' state, are never touched.
namespace LibraryPages {

// Every loaded library whose file name begins with one of `fileNames` ("libsqlite3.so").
void release(const QByteArrayList& fileNames);

} // namespace LibraryPages
