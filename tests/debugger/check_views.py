"""Run by gdb on debugger_subject: each value prints as it should."""

import gdb

EXPECTED = [
    ("mark", 'L"HEA200" = {length = 6, shared by = 4}'),
    ("empty", 'L"" = {length = 0, shared by = 1}'),
    ("special", 'L"a\\"\\x000A\u20ac\U0001f600\\xD800" = {length = 7, shared by = 1}'),
    ("converted", 'L"abc" = {length = 3, shared by = 1, 8-bit form = ... "abc"}'),
    ("numbers", "2 of double, room for 8 = {1.5, -2}"),
    ("none", "0 of double, room for 0"),
    ("texts", '2 of BryString, room for 8 = {L"HEA200" = {length = 6, shared by = 4}, '
              'L"" = {length = 0, shared by = 1}}'),
    ("units", '1 of wchar_t, room for 8 = {L"x"}'),
    ("unmade", "<Cannot access memory at address 0x1010101010101018>"),
    ("destroyed", "<no body: destroyed>"),
    ("unmadeArray", "<no live array: ..., room for ...>"),
    ("astray", "2 of BryString, room for 8 = {<Cannot access memory at address 0x10>, "
               "<Cannot access memory at address 0x20>}"),
]


def matches(shown, expected):
    """Whether shown is expected, in which ... stands for anything."""
    position = 0
    parts = expected.split("...")
    for part in parts:
        position = shown.find(part, position)
        if position < 0:
            return False
        position += len(part)
    return shown.startswith(parts[0]) and shown.endswith(parts[-1])


def main():
    gdb.execute("set confirm off")
    gdb.execute("set host-charset UTF-8")
    gdb.execute("break lookHere")
    try:
        gdb.execute("run")
    except gdb.error as error:
        print("the subject cannot be run here: %s" % error)
        return 77
    gdb.execute("up")
    failures = 0
    for expression, expected in EXPECTED:
        shown = gdb.execute("output " + expression, to_string=True)
        if not matches(shown, expected):
            failures += 1
            print("%s\n  shows    %s\n  expected %s" % (expression, ascii(shown), ascii(expected)))
    print("%d of %d views are right" % (len(EXPECTED) - failures, len(EXPECTED)))
    return 1 if failures else 0


try:
    result = main()
except Exception as error:  # gdb would end with success
    print("failed: %s" % error)
    result = 1
gdb.execute("quit %d" % result)
