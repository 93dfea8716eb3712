!!NVfp4.0
# Front to back through a volume: local 0 is the step, local 1.x the number of steps, local 1.y the density.
TEMP at, colour, voxel, left;
MOV at, fragment.texcoord[0];
MOV colour, 0;
MOV left.x, 1;
REP program.local[1].x;
    TEX voxel, at, texture[0], 3D;
    SUB left.y, voxel.w, 0.01;
    MOVC left.y, left.y;
    IF GT.y;
        TEX voxel.xyz, voxel.w, texture[1], 2D;
        MUL_SAT voxel.w, voxel.w, program.local[1].y;
        MUL left.z, left.x, voxel.w;
        MAD colour.xyz, voxel, left.z, colour;
        SUB left.x, left.x, left.z;
    ELSE;
        ADD colour.w, colour.w, 1;
    ENDIF;
    SUB left.w, 0.05, left.x;
    MOVC left.w, left.w;
    IF GT.w;
        BRK;
    ENDIF;
    ADD at.xyz, at, program.local[0];
ENDREP;
MOV result.color.xyz, colour;
SUB result.color.w, 1, left.x;
END
