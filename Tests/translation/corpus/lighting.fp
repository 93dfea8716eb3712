!!ARBfp1.0
OPTION ARB_precision_hint_fastest;
# local 0: direction to the light, local 1: its colour and the shininess, local 2: ambient colour
PARAM light = program.local[0];
PARAM lamp = program.local[1];
PARAM ambient = program.local[2];
TEMP base, n, h, factors;
TEX base, fragment.texcoord[0], texture[0], 2D;
SUB factors.w, base.w, 0.5;
KIL factors.w;
DP3 n.w, fragment.texcoord[1], fragment.texcoord[1];
RSQ n.w, n.w;
MUL n.xyz, fragment.texcoord[1], n.w;
DP3 h.w, fragment.texcoord[2], fragment.texcoord[2];
RSQ h.w, h.w;
MAD h.xyz, -fragment.texcoord[2], h.w, light;
DP3 h.w, h, h;
RSQ h.w, h.w;
MUL h.xyz, h, h.w;
DP3_SAT factors.x, n, light;
DP3_SAT factors.y, n, h;
POW factors.y, factors.y, lamp.w;
CMP factors.y, -factors.x, factors.y, 0;
MAD n.xyz, lamp, factors.x, ambient;
MUL base.xyz, base, n;
MAD_SAT result.color.xyz, lamp, factors.y, base;
MOV result.color.w, base.w;
END
