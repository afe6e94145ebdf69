"""The classes' documentation as Python sees it, built from the member tables.

Each library class gets its own subclass of tk.Object (made the first time an
object of the class reaches Python), whose attributes document the members:
methods as functions with an inspect signature, properties as properties.
Objects still resolve every member late-bound; these attributes only serve
help(), inspect.signature and editors.  The enumerations become IntEnums.
"""

import enum
import inspect
from typing import Any

from . import _core

# Annotations of the automation types.
_ANNOTATIONS = {
    "Double": float, "Single": float, "Currency": float,
    "Long": int, "Integer": int, "Byte": int,
    "Boolean": bool, "String": str,
    "Object": "Object | None",
    "Variant": Any,
}


def _annotation(vt):
    return _ANNOTATIONS.get(vt, Any)


def _signature_text(name, kind, access, params, result):
    def one(p):
        pname, vt, output, optional, default, param_array, default_text = p
        if param_array:
            return "ParamArray %s()" % pname
        s = ("ByRef " if output else "") + "%s: %s" % (pname, vt)
        if optional:
            s = "[%s%s]" % (s, " = " + default_text if default_text else "")
        return s
    args = ", ".join(one(p) for p in params)
    if kind == "method":
        return "%s(%s)%s" % (name, args, " -> " + result if result else "")
    head = "%s(%s) -> %s" % (name, args, result) if params else "%s: %s" % (name, result)
    return "%s {%s}" % (head, ", ".join(access))


def member_doc(row):
    """The docstring of one member row of _core._class_members."""
    name, kind, access, params, result, doc, is_default = row
    text = _signature_text(name, kind, access, params, result)
    if is_default:
        text += "  (default member)"
    outputs = [p[0] for p in params if p[2]]
    if outputs:
        text += "\nOutputs (pass a tk.Ref): " + ", ".join(outputs) + "."
    if doc:
        text += "\n\n" + doc
    return text


def _signature(params, result, kind, with_self):
    ps = [inspect.Parameter("self", inspect.Parameter.POSITIONAL_ONLY)] if with_self else []
    for pname, vt, output, optional, default, param_array, _ in params:
        if param_array:
            ps.append(inspect.Parameter(pname, inspect.Parameter.VAR_POSITIONAL))
            continue
        ann = "Ref" if output else _annotation(vt)
        dflt = default if optional else inspect.Parameter.empty
        ps.append(inspect.Parameter(pname, inspect.Parameter.POSITIONAL_OR_KEYWORD, default=dflt, annotation=ann))
    ret = _annotation(result) if result else None
    return inspect.Signature(ps, return_annotation=ret)


class _Property:
    """A documented property of a library class.  Objects resolve their
    members late-bound and never reach it; help() lists it with its text."""

    def __init__(self, name, doc, bound_signature):
        self.__name__ = name
        self.__doc__ = doc
        self.__bound_signature__ = bound_signature

    def __get__(self, obj, owner=None):
        return self if obj is None else getattr(obj, self.__name__)

    def __set__(self, obj, value):
        setattr(obj, self.__name__, value)


def _class_doc(name):
    for cname, progid, clsid in _core.catalogue():
        if cname == name:
            return "%s: library class %s, CLSID %s." % (name, progid, clsid)
    return "%s: an automation class." % name


def make_class_type(base, name, rows):
    ns = {"__slots__": (), "__module__": "tessarkao", "__doc__": _class_doc(name)}
    for row in rows:
        mname, kind, access, params, result, doc, _ = row
        if not mname.isidentifier():
            continue
        text = member_doc(row)
        if kind == "method":
            def call(self, *args, __name=mname, **kwargs):
                return getattr(self, __name)(*args, **kwargs)
            call.__name__ = mname
            call.__qualname__ = name + "." + mname
            call.__doc__ = text
            call.__signature__ = _signature(params, result, kind, True)
            call.__bound_signature__ = _signature(params, result, kind, False)
            ns[mname] = call
        else:
            ns[mname] = _Property(mname, text, _signature(params, result, kind, False))
    return type(name, (base,), ns)


def enumerations():
    """The enumerations of the classes' interfaces as IntEnum classes, by name."""
    out = {}
    for name, owner, constants in _core._enumerations():
        e = enum.IntEnum(name, constants, module="tessarkao")
        e.__doc__ = "Enumeration %s of %s." % (name, owner)
        out[name] = e
    return out
