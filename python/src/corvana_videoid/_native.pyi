"""The extension that cffi makes of native/declarations.h; what it holds is C's and has no types here."""
from typing import Any

ffi: Any
lib: Any
