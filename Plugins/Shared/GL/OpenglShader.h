#pragma once

#include <map>
#include <string>

namespace Ombrique::GaussianBlur {

struct Affine;
struct Color;
struct Mat4;
struct Vec2;
struct Vec3;
struct Vec4;

/// One GLSL program: its sources as text, built when it is first used, with setters by name.
///
/// Construction makes no OpenGL call, so a pass can hold a shader before any context exists. The program belongs to the
/// share group of the context that is current at the build; the destructor may run in any context of that group.
/// Every other operation needs a current context. There is no lock: one thread at a time.
///
/// Nothing is returned on failure. A shader that doesn't compile or link prints its log to standard output, at most 512
/// bytes of it, and leaves the object unbuilt; the next useProgram() tries again. Setters on an unbuilt object, and
/// setters of a name that the program doesn't have, do nothing. Locations are looked up on every call.
class OpenglShader {
public:
    OpenglShader(const std::string& vertexSource, const std::string& fragmentSource);
    /// An empty geometry source means that there is no geometry stage.
    OpenglShader(const std::string& vertexSource, const std::string& fragmentSource, const std::string& geometrySource);
    OpenglShader(const OpenglShader&) = delete;
    OpenglShader& operator=(const OpenglShader&) = delete;
    virtual ~OpenglShader();

    /// Gives an attribute its location when the program is linked; to be called before that. A name that is already
    /// recorded keeps its first location. No OpenGL call.
    void addAttributeBinding(const std::string& name, int location);

    /// Compiles and links.
    void buildShader();
    /// Builds the program if there is none, and makes it the active one; program 0 after a failed build.
    void useProgram();

    /// -1 for an unbuilt object or an unknown name.
    int getUniformLocation(const std::string& name) const;
    /// -1 for an unknown name. On an unbuilt object OpenGL is asked about program 0, which is an OpenGL error.
    int getAttributeLocation(const std::string& name) const;

    /// Binds `texture` to `target` on texture unit `unit`, which stays active, and points the sampler at it.
    void setUniformTexture(const std::string& name, int target, int texture, int unit) const;

    // Uniforms of the program in use: useProgram() comes first.

    void setUniform1i(const std::string& name, int x) const;
    void setUniform2i(const std::string& name, int x, int y) const;
    void setUniform3i(const std::string& name, int x, int y, int z) const;
    void setUniform4i(const std::string& name, int x, int y, int z, int w) const;
    void setUniform1f(const std::string& name, float x) const;
    void setUniform2f(const std::string& name, float x, float y) const;
    void setUniform3f(const std::string& name, float x, float y, float z) const;
    void setUniform4f(const std::string& name, float x, float y, float z, float w) const;

    // Arrays: `count` elements of as many components as the name says, packed.

    void setUniform1iv(const std::string& name, const int* values, int count) const;
    void setUniform2iv(const std::string& name, const int* values, int count) const;
    void setUniform3iv(const std::string& name, const int* values, int count) const;
    void setUniform4iv(const std::string& name, const int* values, int count) const;
    void setUniform1fv(const std::string& name, const float* values, int count) const;
    void setUniform2fv(const std::string& name, const float* values, int count) const;
    void setUniform3fv(const std::string& name, const float* values, int count) const;
    void setUniform4fv(const std::string& name, const float* values, int count) const;

    // From the math types, whose doubles are narrowed to float. Colours go as red, green, blue, alpha.

    void setUniform2f(const std::string& name, const Vec2& value) const;
    void setUniform3f(const std::string& name, const Vec3& value) const;
    void setUniform4f(const std::string& name, const Vec4& value) const;
    void setUniform4f(const std::string& name, const Color& value) const;
    /// A mat3, or an array of them: `matrices` points to `count` transforms, each of which gets the last row (0, 0, 1).
    void setUniformMatrix3f(const std::string& name, Affine* matrices, int count) const;
    /// A mat4. One matrix is all that it takes: `count` must be 1, which is asserted.
    void setUniformMatrix4f(const std::string& name, const Mat4& matrix, int count) const;

    // Attributes: enables the array and describes it. `pointer` is handed on as it is: with a buffer bound to
    // GL_ARRAY_BUFFER it is an offset in bytes. `stride` is in bytes. Location -1 is skipped, except by the forms of
    // 2fv and 3fv that take a location, which hand it on.

    void setAttribute1iv(int location, const int* pointer, int stride);
    void setAttribute1fv(const std::string& name, const float* pointer, int stride);
    void setAttribute1fv(int location, const float* pointer, int stride);
    void setAttribute2fv(const std::string& name, const float* pointer, int stride);
    void setAttribute2fv(int location, const float* pointer, int stride);
    void setAttribute3fv(const std::string& name, const float* pointer, int stride);
    void setAttribute3fv(int location, const float* pointer, int stride);
    void setAttribute4fv(const std::string& name, const float* pointer, int stride);
    void setAttribute4fv(int location, const float* pointer, int stride);

    void disableVertexAttributeArray(int location);
    void disableVertexAttributeArray(const std::string& name);

private:
    /// Calls `call` with the uniform's location, where there is one.
    template <typename Call> void withUniform(const std::string& name, Call call) const {
        const int location = getUniformLocation(name);
        if (location != -1)
            call(location);
    }

    std::string mVertexSource;
    std::string mFragmentSource;
    std::string mGeometrySource;
    unsigned mProgram = 0;
    std::map<std::string, int> mAttributeBindings;
};

} // namespace Ombrique::GaussianBlur
