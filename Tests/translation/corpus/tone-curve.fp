!!ARBfp1.0
# Exposure, a shoulder towards white, a look-up in a cube of colours, and a dark rim.
PARAM luma = { 0.2126, 0.7152, 0.0722, 0 };
PARAM middle = { 0.5, 0.5, 0.5, 0.5 };
TEMP c, t;
TEX c, fragment.texcoord[0], texture[0], 2D;
EX2 t.x, program.local[0].x;
MUL c.xyz, c, t.x;
DP3 t.x, c, luma;
ADD t.y, |t.x|, 1;
RCP t.y, t.y;
MUL t.z, t.x, t.y;
MUL c.xyz, c, t.y;
MAX c, c, 0;
MIN c, c, 1;
TEX c.xyz, c, texture[1], 3D;
SUB t, fragment.texcoord[0], middle;
DP2 t.x, t, t;
COS t.w, t.x;
LG2 t.y, t.w;
FRC t.z, t.z;
ABS t.y, t.y;
SLT t.x, t.w, program.local[0].y;
SGE t.xyz, c, middle;
MUL c.xyz, c, t;
LRP result.color, t.w, c, middle;
END
