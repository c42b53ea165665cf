#pragma once

/// The host's API in one include.

#include "patcher/atom.h"
#include "patcher/attribute.h"
#include "patcher/binbuf.h"
#include "patcher/class.h"
#include "patcher/console.h"
#include "patcher/dictionary.h"
#include "patcher/memory.h"
#include "patcher/object.h"
#include "patcher/outlet.h"
#include "patcher/signal.h"
#include "patcher/symbol.h"
#include "patcher/types.h"
