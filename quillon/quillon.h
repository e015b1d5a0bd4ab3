// Every header that a host needs. A plug-in includes quillon/core/plugin.h instead.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/containers/names.h"
#include "quillon/export.h"
#include "quillon/messages/message.h"
#include "quillon/messages/router.h"
