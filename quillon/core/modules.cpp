// SPDX-License-Identifier: MIT
#include "quillon/core/modules.h"

#include "quillon/core/end_of_life.h"

using namespace quillon;

namespace quillon {
namespace {

constinit Lasting<modCore> core;
constinit Lasting<modGraphics> graphics;
constinit Lasting<modInput> input;
constinit Lasting<modSystem> system_module;
constinit Lasting<modNetwork> network;
constinit Lasting<modAudio> audio;
constinit Lasting<modPhysics> physics;
constinit Lasting<modFileOperations> file_operations;

} // namespace
} // namespace quillon

modCore* __mCore_instance() {
    return &core.get();
}

modGraphics* __mGraphics_instance() {
    return &graphics.get();
}

modInput* __mInput_instance() {
    return &input.get();
}

modSystem* __mSystem_instance() {
    return &system_module.get();
}

modNetwork* __mNetwork_instance() {
    return &network.get();
}

modAudio* __mAudio_instance() {
    return &audio.get();
}

modPhysics* __mPhysics_instance() {
    return &physics.get();
}

modFileOperations* __mFileOps_instance() {
    return &file_operations.get();
}
