#include "Platform/HostInterface/HostInterface.h"

#include <cstddef>

// The host and the plug-in are compiled apart and share nothing but these declarations. Each value that one of them
// relies on is asserted here: to change it is to change the interface.

static_assert(PF_Err_NONE == 0 && PF_Err_OUT_OF_MEMORY == 4 && A_Err_MISSING_SUITE == 13);
static_assert(PF_FIRST_ERR == 512 && PF_Err_INTERNAL_STRUCT_DAMAGED == 512);
static_assert(PF_Err_UNRECOGNIZED_PARAM_TYPE == 514 && PF_Err_BAD_CALLBACK_PARAM == 516);

static_assert(PF_Cmd_ABOUT == 0 && PF_Cmd_GLOBAL_SETUP == 1 && PF_Cmd_UNUSED_0 == 2 && PF_Cmd_GLOBAL_SETDOWN == 3);
static_assert(PF_Cmd_PARAMS_SETUP == 4 && PF_Cmd_RENDER == 11);
static_assert(PF_Cmd_SMART_PRE_RENDER == 23 && PF_Cmd_SMART_RENDER == 24);

static_assert(PF_OutFlag_DISPLAY_ERROR_MESSAGE == 0x100 && PF_OutFlag2_SUPPORTS_SMART_RENDER == 0x400);
static_assert(PF_VERSION(1, 0, 0, PF_Stage_DEVELOP, 1) == 0x80001);
static_assert(PF_Param_FLOAT_SLIDER == 10);

static_assert(PF_PixelFormat_ARGB32 == 0x62677261 && PF_PixelFormat_ARGB64 == 0x36316561);
static_assert(PF_PixelFormat_ARGB128 == 0x32336561);

static_assert(sizeof(PF_Err) == 4 && sizeof(PF_LRect) == 16);
static_assert(sizeof(PF_Pixel8) == 4 && sizeof(PF_Pixel16) == 8 && sizeof(PF_PixelFloat) == 16);
static_assert(offsetof(PF_Pixel8, alpha) == 0 && offsetof(PF_Pixel8, red) == 1);
static_assert(offsetof(PF_Pixel8, green) == 2 && offsetof(PF_Pixel8, blue) == 3);
static_assert(sizeof(PF_FloatSliderDef::precision) == 2 && sizeof(PF_FloatSliderDef::display_flags) == 2);
