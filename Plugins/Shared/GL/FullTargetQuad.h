#pragma once

#include "Plugins/Shared/GL/OpenglShader.h"
#include "Plugins/Shared/GL/PerContext.h"

namespace Ombrique::GaussianBlur {

/// The vertices of a pass that covers its whole render target: two triangles from clip-space (-1, -1) to (1, 1), where
/// (-1, -1) meets texture coordinate (0, 0), so that nothing is flipped.
///
/// The vertex buffer is made at the first draw and lives in the share group; a vertex array is made at the first draw
/// in each context, since no other context knows it. Attribute location 0 is the position, location 1 the texture
/// coordinate, of 2 floats. Construction makes no OpenGL call; everything else needs a current context. No lock: one
/// thread at a time.
class FullTargetQuad {
public:
    /// `positionComponents` is 2, or 3 for a third coordinate of 0 in each position.
    explicit FullTargetQuad(int positionComponents) : mPositionComponents(positionComponents) {}
    FullTargetQuad(const FullTargetQuad&) = delete;
    FullTargetQuad& operator=(const FullTargetQuad&) = delete;
    /// Deletes the buffer, and the current context's vertex array. Other contexts' arrays end with their contexts.
    ~FullTargetQuad();

    /// Gives the two attributes, "position" and "input_uv", their locations in `shader`, before it is built.
    static void bindAttributes(OpenglShader& shader);

    /// Draws with `shader`. `setUniforms` is called with no arguments once the program is in use. Afterwards the
    /// program is still in use, and neither a vertex array nor an array buffer is bound.
    template <typename SetUniforms> void draw(OpenglShader& shader, SetUniforms setUniforms) {
        begin(shader);
        setUniforms();
        end(shader);
    }

    /// Draws with the two uniforms that all passes have: "videoTexture", with `texture` on unit 0, and
    /// "multiplier16bit".
    void drawTexture(OpenglShader& shader, unsigned texture, float multiplier);
    /// Sets those two, for a pass that has more of them.
    static void setTextureUniforms(const OpenglShader& shader, unsigned texture, float multiplier);

private:
    unsigned makeVertexObjects();
    void begin(OpenglShader& shader);
    void end(OpenglShader& shader);

    int mPositionComponents;
    PerContext<unsigned> mVertexArray;
    unsigned mVertexBuffer = 0;
};

} // namespace Ombrique::GaussianBlur
