#pragma once

/// The API of Pd. Its header makes macros of some names of types, which other namespaces use too: here they become
/// types.

#include <m_pd.h>

#undef t_class
#undef t_outlet
#undef t_inlet
#undef t_binbuf
#undef t_clock
#undef t_glist
#undef t_canvas
using t_class = struct _class;
using t_outlet = struct _outlet;
using t_inlet = struct _inlet;
using t_binbuf = struct _binbuf;
using t_clock = struct _clock;
using t_glist = struct _glist;
using t_canvas = struct _glist;
