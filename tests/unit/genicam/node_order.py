"""The order of the nodes of a camera description: that of their first mention.

A second reading of the rule, apart from the runtime's own, for conformance.py.
"""
import xml.etree.ElementTree as ElementTree

# Their nested knives bear their name; those of a StructReg their own.
NAMING_REGISTERS = {"IntReg", "MaskedIntReg", "FloatReg", "Register"}
CONVERTERS = {"Converter", "IntConverter"}
NESTED_NODES = {"EnumEntry", "StructEntry", "IntSwissKnife", "TextDesc", "IntKey"}
MADE_UP = {"Constant", "Expression"}


def local(tag):
    return tag.rpartition("}")[2]


def is_link(name):
    return name[0] == "p" and name[1:2].isupper() or name == "p1212Parser"


def mentions(element, outer=None):
    """Names of nodes in the order in which the element mentions them, each as often as it does."""
    kind = local(element.tag)
    name = element.get("Name")
    if kind == "Extension":
        return
    if kind in ("Group", "RegisterDescription"):
        for child in element:
            yield from mentions(child)
        return
    if kind == "EnumEntry" and outer is not None:
        name = f"EnumEntry_{outer.get('Name')}_{name}"
    if kind == "IntSwissKnife" and outer is not None and local(outer.tag) in NAMING_REGISTERS:
        name = f"_{outer.get('Name')}_{name}"
    if kind != "StructReg":
        yield name
    for child in element:
        child_kind = local(child.tag)
        if child_kind in NESTED_NODES:
            yield from mentions(child, element)
        elif child_kind in MADE_UP:
            yield f"_{name}_{child.get('Name')}"
        elif is_link(child_kind):
            yield from filter(None, (child.get("pOffset"), "".join(child.itertext())))
    if kind in CONVERTERS:
        yield from (f"{name}_ConvertTo", f"{name}_ConvertFrom")


def node_order(path):
    return list(dict.fromkeys(mentions(ElementTree.parse(path).getroot())))
