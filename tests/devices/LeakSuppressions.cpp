// GLib's own tables, made while it is loaded, are found to be leaks by the leak checker. Everything
// allocated by GLib is left out, since nothing tells those tables from the rest without its
// symbols.

extern "C" const char* __lsan_default_suppressions() {
  return "leak:libglib-2.0.so\n";
}
