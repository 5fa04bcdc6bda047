// SPDX-License-Identifier: Apache-2.0
// Shaders, programs and their uniforms.
#include "proofs/conformance/recorded_calls.h"

namespace {

using namespace lumora::test::recorded;  // NOLINT: the words of these functions
using lumora::test::GlName;
using lumora::test::Numbers;
using lumora::test::ObjectKind;

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

GLuint GL_APIENTRY glCreateShader(GLenum type) {
  const GLuint shader = LUMORA_NEXT(glCreateShader)(type);
  Now().shaders[shader] = GlName(type);
  Record("glCreateShader", {Name(type)});
  return shader;
}
void GL_APIENTRY glShaderSource(GLuint shader, GLsizei count, const GLchar* const* texts,
                                const GLint* lengths) {
  Record("glShaderSource", {Shader(shader)});
  LUMORA_NEXT(glShaderSource)(shader, count, texts, lengths);
}
void GL_APIENTRY glCompileShader(GLuint shader) {
  Record("glCompileShader", {Shader(shader)});
  LUMORA_NEXT(glCompileShader)(shader);
}
void GL_APIENTRY glGetShaderiv(GLuint shader, GLenum name, GLint* value) {
  Record("glGetShaderiv", {Shader(shader), Name(name)});
  LUMORA_NEXT(glGetShaderiv)(shader, name, value);
}
void GL_APIENTRY glDeleteShader(GLuint shader) {
  Record("glDeleteShader", {Shader(shader)});
  LUMORA_NEXT(glDeleteShader)(shader);
}
GLuint GL_APIENTRY glCreateProgram(void) {
  const GLuint program = LUMORA_NEXT(glCreateProgram)();
  Record("glCreateProgram", {{"", Make(ObjectKind::Program, program)}});
  return program;
}
void GL_APIENTRY glAttachShader(GLuint program, GLuint shader) {
  Record("glAttachShader", {Program(program), Shader(shader)});
  LUMORA_NEXT(glAttachShader)(program, shader);
}
void GL_APIENTRY glLinkProgram(GLuint program) {
  Record("glLinkProgram", {Program(program)});
  LUMORA_NEXT(glLinkProgram)(program);
}
void GL_APIENTRY glGetProgramiv(GLuint program, GLenum name, GLint* value) {
  Record("glGetProgramiv", {Program(program), Name(name)});
  LUMORA_NEXT(glGetProgramiv)(program, name, value);
}
void GL_APIENTRY glDeleteProgram(GLuint program) {
  Record("glDeleteProgram", {Program(program)});
  LUMORA_NEXT(glDeleteProgram)(program);
}
GLboolean GL_APIENTRY glIsProgram(GLuint program) {
  Record("glIsProgram", {Program(program)});
  return LUMORA_NEXT(glIsProgram)(program);
}
GLint GL_APIENTRY glGetAttribLocation(GLuint program, const GLchar* name) {
  Record("glGetAttribLocation", {Program(program), {name}});
  const GLint location = LUMORA_NEXT(glGetAttribLocation)(program, name);
  Now().attributes[{Program(program).object.id, location}] = name;
  return location;
}
GLint GL_APIENTRY glGetUniformLocation(GLuint program, const GLchar* name) {
  Record("glGetUniformLocation", {Program(program), {name}});
  const GLint location = LUMORA_NEXT(glGetUniformLocation)(program, name);
  Now().uniforms[{Program(program).object.id, location}] = name;
  return location;
}
void GL_APIENTRY glUseProgram(GLuint program) {
  Record("glUseProgram", {Program(program)});
  Now().program = Program(program).object.id;
  LUMORA_NEXT(glUseProgram)(program);
}

void GL_APIENTRY glUniform1i(GLint location, GLint x) {
  Record("glUniform1i", {Uniform(location), Number(x)});
  LUMORA_NEXT(glUniform1i)(location, x);
}
void GL_APIENTRY glUniform1f(GLint location, GLfloat x) {
  Record("glUniform1f", {Uniform(location), {Numbers({x})}});
  LUMORA_NEXT(glUniform1f)(location, x);
}
void GL_APIENTRY glUniform2f(GLint location, GLfloat x, GLfloat y) {
  Record("glUniform2f", {Uniform(location), {Numbers({x, y})}});
  LUMORA_NEXT(glUniform2f)(location, x, y);
}
void GL_APIENTRY glUniform3f(GLint location, GLfloat x, GLfloat y, GLfloat z) {
  Record("glUniform3f", {Uniform(location), {Numbers({x, y, z})}});
  LUMORA_NEXT(glUniform3f)(location, x, y, z);
}
void GL_APIENTRY glUniform4f(GLint location, GLfloat x, GLfloat y, GLfloat z, GLfloat w) {
  Record("glUniform4f", {Uniform(location), {Numbers({x, y, z, w})}});
  LUMORA_NEXT(glUniform4f)(location, x, y, z, w);
}
void GL_APIENTRY glUniform2fv(GLint location, GLsizei count, const GLfloat* values) {
  Record("glUniform2fv", {Uniform(location), Number(count), {Numbers(values, 2 * count)}});
  LUMORA_NEXT(glUniform2fv)(location, count, values);
}
void GL_APIENTRY glUniformMatrix3fv(GLint location, GLsizei count, GLboolean transpose,
                                    const GLfloat* values) {
  Record("glUniformMatrix3fv", {Uniform(location), Number(count), Number(transpose)});
  LUMORA_NEXT(glUniformMatrix3fv)(location, count, transpose, values);
}
void GL_APIENTRY glUniformMatrix4fv(GLint location, GLsizei count, GLboolean transpose,
                                    const GLfloat* values) {
  Record("glUniformMatrix4fv",
         {Uniform(location), Number(count), Number(transpose), {Numbers(values, 16)}});
  LUMORA_NEXT(glUniformMatrix4fv)(location, count, transpose, values);
}

}  // extern "C"
#pragma GCC visibility pop
