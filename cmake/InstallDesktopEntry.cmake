# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the desktop entry with the program named by its full path, under the prefix of this
# install (`cmake --install --prefix`, or the package's /usr). KWin gives its list of every
# program's windows only to a program whose entry, found by that full path, asks for it.
# Set by the caller: lulltide_desktop_source, lulltide_desktop_name, lulltide_bindir,
# lulltide_datadir.
file(READ "${lulltide_desktop_source}" entry)
set(program "${CMAKE_INSTALL_PREFIX}/${lulltide_bindir}/lulltide")
string(REPLACE "\nExec=lulltide\n" "\nExec=${program}\n" entry "${entry}")
set(folder "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${lulltide_datadir}/applications")
file(MAKE_DIRECTORY "${folder}")
message(STATUS "Installing: ${folder}/${lulltide_desktop_name}")
file(WRITE "${folder}/${lulltide_desktop_name}" "${entry}")
list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${folder}/${lulltide_desktop_name}")
