!!ARBfp1.0
# Keeps what lies behind the depth of the layer before, and writes a depth moved by local 0.
TEMP layer, d;
TEX layer, fragment.position, texture[0], RECT;
SUB d.x, fragment.position.z, layer.x;
SUB d.x, d.x, program.local[0].x;
KIL d.x;
ADD_SAT result.depth.z, fragment.position.z, program.local[0].y;
MOV result.color, fragment.color;
END
