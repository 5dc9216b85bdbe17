#pragma once
// GDI+ with the headers it needs before it, for every file of the module that uses it.

#include <windows.h>
#include <objidl.h>

#include <gdiplus.h>
