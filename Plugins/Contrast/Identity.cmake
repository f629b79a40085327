# Who the effect is. Written once, here: the code's Identity.h, the property list of the bundle and the registration
# resource are generated from it.

set(OMBRIQUE_EFFECT_NAME "Ombrique Contrast")
set(OMBRIQUE_EFFECT_DESCRIPTION "${OMBRIQUE_EFFECT_NAME}")
set(OMBRIQUE_EFFECT_AUTHOR "Ombrique")
set(OMBRIQUE_EFFECT_EXPLANATION "Corrects the contrast and the brightness of each frame on the GPU")
set(OMBRIQUE_EFFECT_CATEGORY "Ombrique")
set(OMBRIQUE_EFFECT_MATCH_NAME "Ombrique Contrast")
set(OMBRIQUE_EFFECT_IDENTIFIER "ombrique.contrast")
set(OMBRIQUE_EFFECT_EXECUTABLE "OmbriqueContrast")
set(OMBRIQUE_EFFECT_ENTRY_POINT "EntryPointFunc")

set(OMBRIQUE_EFFECT_VERSION_MAJOR 1)
set(OMBRIQUE_EFFECT_VERSION_MINOR 0)
set(OMBRIQUE_EFFECT_VERSION_BUG_FIX 0)
set(OMBRIQUE_EFFECT_VERSION_STAGE 0) # PF_Stage_DEVELOP
set(OMBRIQUE_EFFECT_VERSION_BUILD 1)
# Packed as the host packs a version.
math(EXPR OMBRIQUE_EFFECT_VERSION "(${OMBRIQUE_EFFECT_VERSION_MAJOR} << 19) | (${OMBRIQUE_EFFECT_VERSION_MINOR} << 15) \
| (${OMBRIQUE_EFFECT_VERSION_BUG_FIX} << 11) | (${OMBRIQUE_EFFECT_VERSION_STAGE} << 9) | ${OMBRIQUE_EFFECT_VERSION_BUILD}")

set(OMBRIQUE_EFFECT_OUT_FLAGS 0)     # 8-bit worlds only
set(OMBRIQUE_EFFECT_OUT_FLAGS2 1024) # PF_OutFlag2_SUPPORTS_SMART_RENDER
