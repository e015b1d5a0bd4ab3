#include "quillon/core/modules.h"

#include "quillon/core/end_of_life.h"

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

std::unique_ptr<cInterfaceView> view_of(void**& interface) {
    return std::make_unique<cInterfaceView>(cInterfaceView{&interface});
}

std::unique_ptr<cPairedInterfaceView> paired_view_of(modGraphics& module) {
    return std::make_unique<cPairedInterfaceView>(
        cPairedInterfaceView{&module.firstWord, &module.secondWord, &module.interface});
}

} // namespace

modGraphics::modGraphics()
    : view0(view_of(interface)),
      view1(paired_view_of(*this)),
      view2(view_of(interface)),
      view3(paired_view_of(*this)),
      view4(view_of(interface)),
      view5(view_of(interface)),
      view6(view_of(interface)) {}

modNetwork::modNetwork() : view0(view_of(interface)), view1(view_of(interface)) {}

modAudio::modAudio() : view0(view_of(interface)), view1(view_of(interface)) {}

} // namespace quillon

quillon::modCore* __mCore_instance() {
    return &quillon::core.get();
}

quillon::modGraphics* __mGraphics_instance() {
    return &quillon::graphics.get();
}

quillon::modInput* __mInput_instance() {
    return &quillon::input.get();
}

quillon::modSystem* __mSystem_instance() {
    return &quillon::system_module.get();
}

quillon::modNetwork* __mNetwork_instance() {
    return &quillon::network.get();
}

quillon::modAudio* __mAudio_instance() {
    return &quillon::audio.get();
}

quillon::modPhysics* __mPhysics_instance() {
    return &quillon::physics.get();
}

quillon::modFileOperations* __mFileOps_instance() {
    return &quillon::file_operations.get();
}
