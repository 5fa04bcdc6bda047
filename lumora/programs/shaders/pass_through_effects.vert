// SPDX-License-Identifier: Apache-2.0
// Passes the quad and its texture coordinates on, under the varying's name in the effect shaders.
attribute vec4 a_vertexCoord;
attribute vec2 a_textureCoord;
varying vec2 v_texCoord;
void main() {
  gl_Position = a_vertexCoord;
  v_texCoord = a_textureCoord;
}
