# SPDX-License-Identifier: MIT
"""Shows quillon's lists, maps, vectors and colours in gdb; loaded with the library, or by `source`."""
import gdb
import gdb.printing


class Components:
    """Numbers side by side, such as (1, 2, 3)."""

    def __init__(self, value, names):
        self.text = "(" + ", ".join(str(value[name]) for name in names) + ")"

    def to_string(self):
        return self.text


def elements_of(vector):
    """The elements of a std::vector of libstdc++."""
    element = vector["_M_impl"]["_M_start"]
    while element != vector["_M_impl"]["_M_finish"]:
        yield element.dereference()
        element += 1


def pointee(pointer):
    return pointer.dereference() if pointer and pointer.type.target().sizeof > 1 else pointer


class List:
    """Elements in order, each as what it points to."""

    def __init__(self, value):
        self.items = list(elements_of(value["items"]))
        self.owns = not value["referencesOnly"]

    def to_string(self):
        return "%s of %d" % ("list" if self.owns else "references", len(self.items))

    def children(self):
        for position, item in enumerate(self.items):
            yield "[%d]" % position, pointee(item)

    def display_hint(self):
        return "array"


class Map:
    """Keys and what is stored under them, by the standard library's own printer of a map."""

    def __init__(self, value):
        self.entries = value["entries"]
        self.printer = gdb.default_visualizer(self.entries)

    def to_string(self):
        return "map"

    def children(self):
        return self.printer.children() if self.printer else iter([("entries", self.entries)])

    def display_hint(self):
        return "map" if self.printer else None


def build():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("quillon")
    printers.add_printer("list", "^quillon::((DSParray|DSPrefArray)<.*>|DelayQueue)$", List)
    printers.add_printer("map", "^quillon::(DSPhashMap|DSPrefHashMap)<.*>$", Map)
    for name, fields in (("cVector3D", "xyz"), ("cVector2D<.*>", "xy"), ("cQuaternion", "xyzw")):
        printers.add_printer(name, "^quillon::%s$" % name, lambda v, f=fields: Components(v, f))
    printers.add_printer("cColor", "^quillon::cColor$",
                         lambda v: Components(v, "rgba"))
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), build(), replace=True)
