uniform vec2 u_shift;
uniform vec2 u_scale;
