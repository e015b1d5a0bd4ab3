#include "quillon/rendercache/render_cache.h"
#include <gtest/gtest.h>
