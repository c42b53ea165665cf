#pragma once

/// The host's API in one include.

#include "max/atom.h"
#include "max/attribute.h"
#include "max/binbuf.h"
#include "max/class.h"
#include "max/console.h"
#include "max/dictionary.h"
#include "max/memory.h"
#include "max/object.h"
#include "max/outlet.h"
#include "max/signal.h"
#include "max/symbol.h"
#include "max/types.h"
