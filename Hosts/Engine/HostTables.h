#pragma once

#include "Platform/HostInterface/HostInterface.h"

/// The functions that the host serves, as the tables of the interface. Private to the engine.
namespace Ombrique::Hosts {

extern const PF_InteractCallbacks kInteractCallbacks;
extern const PF_PreRenderCallbacks kPreRenderCallbacks;
extern const PF_SmartRenderCallbacks kSmartRenderCallbacks;

extern const PF_ANSICallbacksSuite1 kAnsiSuite;
extern const PF_iterateFloatSuite1 kIterateFloatSuite;
extern const PF_HandleSuite1 kHandleSuite;
extern const AEGP_MemorySuite1 kMemorySuite;
extern const AEGP_UtilitySuite5 kUtilitySuite;

/// PF_GET_PIXEL_DATA8 and PF_GET_PIXEL_DATA16.
PF_Err getPixelData8(PF_EffectWorld* world, void* pixel, PF_Pixel8** data);
PF_Err getPixelData16(PF_EffectWorld* world, void* pixel, PF_Pixel16** data);

/// Where suites are acquired and released. The interface has it changeable, and nobody changes it.
extern SPBasicSuite kBasicSuite;

} // namespace Ombrique::Hosts
