"""How gdb shows the values of KelRoots:  (gdb) source debugger/kelroots_gdb.py

BryString   the text, its length and how many strings share its body
BryArray    the elements in use, and how many the storage has room for

What cannot be read, or cannot be right, is said in place of the value.
"""

import re

import gdb
import gdb.printing

_UNIT = 2          # bytes of a wide character
_PAGE = 4096       # memory is readable or not by pages
_LONGEST = 1 << 20  # units looked at before the end of a text is given up


def _read_units(address):
    """The units before the terminator of the text at address, and whether the terminator was found."""
    data = bytearray()
    while len(data) < _LONGEST * _UNIT:
        start = address + len(data)
        block = bytes(gdb.selected_inferior().read_memory(start, _PAGE - start % _PAGE))
        data += block
        for end in range(len(data) - len(block), len(data) - 1, _UNIT):
            if data[end:end + _UNIT] == b"\0\0":
                return data[:end], True
    return data, False


def _spell(units):
    """16-bit text as a C++ literal; what a terminal cannot show comes as a number."""
    def shown(match):
        c = match.group()
        return "\\" + c if c in '"\\' else "\\x%04X" % ord(c)
    return 'L"%s"' % re.sub('[\0-\x1f\x7f-\x9f"\\\\\ud800-\udfff]', shown, units.decode("utf-16-le", "surrogatepass"))


def _shown_text(units):
    limit = gdb.parameter("print elements")
    cut = limit and len(units) > limit * _UNIT
    return _spell(units[:limit * _UNIT]) + "..." if cut else _spell(units)


class BryStringPrinter:
    def __init__(self, value):
        self.units, self.shared, self.problem = b"", None, None
        try:
            self._read(value)
        except (gdb.error, OverflowError, UnicodeError) as error:
            self.problem = "<%s>" % error

    def _read(self, value):
        rep = value["m_rep"]
        if int(rep) == 0:
            self.problem = "<no body: destroyed>"
            return
        # Where the library has no debug information its body type is a name only: the members are found by place,
        # behind the pointer to the virtual table.
        pointer = gdb.lookup_type("void").pointer()
        places = rep.cast(pointer.pointer())
        self.units, complete = _read_units(int((places + 1).dereference()))
        if not complete:
            self.problem = "<no end within %d units>" % _LONGEST
        self.shared = int((places + 2).cast(gdb.lookup_type("int").pointer()).dereference())
        self.ansi = value["m_ansi"]

    def to_string(self):
        return self.problem or _shown_text(self.units)

    def children(self):
        if self.problem:
            return
        yield "length", len(self.units) // _UNIT
        yield "shared by", self.shared
        if int(self.ansi) != 0:
            yield "8-bit form", self.ansi


class BryArrayPrinter:
    def __init__(self, value):
        self.length, self.storage, self.problem = 0, None, None
        try:
            self._read(value)
        except gdb.error as error:
            self.problem = "<%s>" % error

    def _read(self, value):
        length, physical = int(value["m_logicalLength"]), int(value["m_physicalLength"])
        self.storage = value["m_storage"]
        self.title = "%d of %s, room for %d" % (length, self.storage.type.target(), physical)
        if not 0 <= length <= max(physical, 0) or (length > 0 and int(self.storage) == 0):
            self.problem = "<no live array: %s>" % self.title
            return
        self.length = length

    def to_string(self):
        return self.problem or self.title

    def children(self):
        for i in range(self.length):
            yield "[%d]" % i, self._element(i)

    def _element(self, i):
        try:
            element = (self.storage + i).dereference()
            if str(element.type.strip_typedefs()) == "wchar_t":  # gdb takes wide characters for 32-bit ones
                return _spell(int(element).to_bytes(_UNIT, "little"))
            element.fetch_lazy()
            return element
        except gdb.error as error:
            return "<%s>" % error

    def display_hint(self):
        return None if self.problem else "array"


def _printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("KelRoots")
    printers.add_printer("BryString", "^BryString$", BryStringPrinter)
    printers.add_printer("BryArray", "^BryArray<.*>$", BryArrayPrinter)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), _printers(), replace=True)
