"""TessarkAO: the automation library of the host CAD application's tools.

    import tessarkao as tk
    v = tk.CreateObject("TessarkAO.TKVector4d")
    v.X = 1.5
    x = tk.Ref(0.0); v.GetPosition(x, tk.Ref(), tk.Ref()); x.value

Library classes are created by ProgID or CLSID and called late-bound by
member name; help() on an object lists its class's members.  Values map as
float Double, int Long, bool Boolean, str String, None Nothing; tk.Empty,
tk.Null and tk.Missing are the special variants, and tk.Integer, tk.Long,
tk.Single, tk.Double, tk.Currency, tk.Byte, tk.Date, tk.Decimal, tk.Boolean
and tk.String give a value an exact type.  The interfaces' enumerations are
IntEnums (tk.TKColumnTypes.TKColumnType_String).  Any other Python object
handed to the library acts as a host object.  tk.ui drives the headless user
interface; tk.refhost, where built, is the reference host.
"""

from . import _core
from ._core import *  # noqa: F401,F403
from ._core import __version__  # noqa: F401
from . import _docs

_core._set_class_type_factory(_docs.make_class_type)
_enumerations = _docs.enumerations()
globals().update(_enumerations)

__all__ = [name for name in dir(_core) if not name.startswith("_")] + sorted(_enumerations)
