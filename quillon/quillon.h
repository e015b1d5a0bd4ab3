// Every header that a host needs. A plug-in includes quillon/core/plugin.h instead, which stays out
// of here because it declares the global names that a plug-in defines.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/containers/names.h"
#include "quillon/core/file_list.h"
#include "quillon/core/interfaces.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugins.h"
#include "quillon/core/worker.h"
#include "quillon/export.h"
#include "quillon/math/constants.h"
#include "quillon/math/serializable.h"
#include "quillon/math/trigonometry.h"
#include "quillon/math/vector.h"
#include "quillon/messages/message.h"
#include "quillon/messages/router.h"
