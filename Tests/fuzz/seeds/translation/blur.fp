!!ARBfp1.0
# One direction of a separable blur: five taps, the step in local 0, the weights in local 1.
TEMP sum, tap, at;
TEX tap, fragment.texcoord[0], texture[0], 2D;
MUL sum, tap, program.local[1].x;
ADD at, fragment.texcoord[0], program.local[0];
TEX tap, at, texture[0], 2D;
MAD sum, tap, program.local[1].y, sum;
SUB at, fragment.texcoord[0], program.local[0];
TEX tap, at, texture[0], 2D;
MAD sum, tap, program.local[1].y, sum;
MAD at, program.local[0], 2, fragment.texcoord[0];
TEX tap, at, texture[0], 2D;
MAD sum, tap, program.local[1].z, sum;
MAD at, program.local[0], -2, fragment.texcoord[0];
TEX tap, at, texture[0], 2D;
MAD result.color, tap, program.local[1].z, sum;
END
