!!ARBfp1.0
# Luma and chroma planes to red, green and blue, then to linear light.
PARAM offset = { -0.0625, -0.5, -0.5 };
PARAM rows[3] = { { 1.164, 0, 1.793 }, { 1.164, -0.213, -0.533 }, { 1.164, 2.112 } };
PARAM gamma = 2.2;
TEMP ycc, rgb;
TEX ycc.x, fragment.texcoord[0], texture[0], RECT;
TEX ycc.yz, fragment.texcoord[1], texture[1], RECT;
ADD ycc.xyz, ycc, offset;
DP3_SAT rgb.x, ycc, rows[0];
DP3_SAT rgb.y, ycc, rows[1];
DP3_SAT rgb.z, ycc, rows[2];
POW result.color.x, rgb.x, gamma.x;
POW result.color.y, rgb.y, gamma.y;
POW result.color.z, rgb.z, gamma.z;
MOV result.color.w, 1.0;
END
