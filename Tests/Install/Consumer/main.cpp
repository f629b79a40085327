// Draws with a pass of the shared layer, in a task of its queue, into a target whose size its math tells.

#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Plugins/Shared/Helper/IdleQueue.h"
#include "Plugins/Shared/Math/Vec2.h"

#include <glbinding/gl/gl.h>

#include <array>
#include <cmath>

using namespace Ombrique::GaussianBlur;
using namespace gl;

static void draw(const Vec2& size, const std::array<float, 4>& host, std::array<float, 4>& drawn) {
    AEOpenGLContext context(nullptr);
    AEOpenglMainFrameBuffer frameBuffer;
    frameBuffer.prepare(std::lround(size.x), std::lround(size.y), false);
    const unsigned source = frameBuffer.createFloatRenderTexture(Vec2(1, 1), false, false);
    glBindTexture(GL_TEXTURE_2D, source);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_RGBA, GL_FLOAT, host.data());
    glViewport(0, 0, frameBuffer.width(), frameBuffer.height());
    frameBuffer.pushNormalRenderContext(frameBuffer.createFloatRenderTexture(false, false));
    BackgroundRender().draw(source, 1.0f);
    glReadPixels(frameBuffer.width() - 1, frameBuffer.height() - 1, 1, 1, GL_RGBA, GL_FLOAT, drawn.data());
    frameBuffer.destory();
}

int main() {
    IdleQueue queue;
    std::array<float, 4> drawn{};
    queue.async([&] { draw(Vec2(3, -4).rotateRound(90.0, Vec2()), {0.5f, 0.5f, 0.25f, 0.75f}, drawn); });
    queue.updateQueue();
    // From the host's alpha, red, green, blue to premultiplied red, green, blue, alpha; no digit is lost.
    return drawn == std::array{0.25f, 0.125f, 0.375f, 0.5f} ? 0 : 1;
}
