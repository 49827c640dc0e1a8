#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs Debian's orca screen reader with neither speech nor braille, its debug log written line by
# line to the file given: what orca would say stands there as "SPEECH OUTPUT: '...'" the moment
# it decides to say it. (orca buffers that file, so a reader ended from outside leaves it empty.)
# Usage: orca-speech.py LOG
import builtins
import sys

_open = builtins.open
log = sys.argv[1]


def line_buffered_log(file, mode="r", *args, **kwargs):
    if file == log and mode == "w":
        return _open(file, mode, 1)
    return _open(file, mode, *args, **kwargs)


builtins.open = line_buffered_log
sys.argv = ["/usr/bin/orca", "--replace", "--disable=speech", "--disable=braille", "--debug-file=" + log]
with _open("/usr/bin/orca") as orca:
    code = compile(orca.read(), "/usr/bin/orca", "exec")
exec(code, {"__name__": "__main__"})
