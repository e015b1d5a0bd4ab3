// SPDX-License-Identifier: MIT
// Every function of the installed headers, also those that nothing calls: what they need has to
// come from the shared library. Only the link counts.
#include "quillon/core/plugin.h"
#include "quillon/quillon.h"

template class quillon::DSParray<quillon::cPlugin>;
template class quillon::DSPhashMap<void>;
template class quillon::DSPrefHashMap<void>;

int main() {}
