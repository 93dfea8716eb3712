!!ARBfp1.0
# The layer behind the one that was peeled last: nearer pixels go, the rest is shaded by a ramp.
PARAM edge = { 0.0001 };
TEMP nearest, gap, shade;
MUL shade, fragment.texcoord[0], 4;
TEX nearest, shade, texture[0], RECT;
MUL nearest.x, nearest.x, 0.1;
SUB gap.x, fragment.position.z, nearest.x;
SUB gap.x, gap.x, edge.x;
KIL gap.x;
RCP shade.x, fragment.position.w;
MUL_SAT shade.x, shade.x, fragment.position.z;
LRP result.color.xyz, shade.x, fragment.color, program.local[2];
SUB result.color.w, 1, shade.x;
END
