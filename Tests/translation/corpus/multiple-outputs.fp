!!ARBfp1.0
OPTION ARB_draw_buffers;
# Albedo, normal, position and a sky colour by direction, each to its own buffer.
TEMP n;
TEX result.color[0], fragment.texcoord[0], texture[2], 2D;
TEX n, fragment.texcoord[0], texture[10], 2D;
MAD n.xyz, n, 2, -1;
MAD result.color[1].xyz, n, 0.5, 0.5;
MOV result.color[1].w, fragment.color.w;
MOV result.color[2], fragment.texcoord[2];
XPD n.xyz, fragment.texcoord[1], n;
TEX_SAT result.color[3].xyz, n, texture[1], CUBE;
MOV_SAT result.color[3].w, fragment.position.z;
END
