!!NVfp4.0
# A colour scale in steps: the first bound above the value decides, at most eight are looked at.
TEMP value, bound, colour;
TEX value, fragment.texcoord[0], texture[0], 2D;
MOV colour, program.local[3];
MOV bound, 0;
REP 8;
    ADD bound.x, bound, 0.125;
    SUB bound.y, value.x, bound.x;
    MOVC bound.y, bound.y;
    IF LT.y;
        BRK;
    ENDIF;
    SUB bound.z, bound.x, 0.3;
    MOVC bound.z, bound.z;
    IF LT.z;
        CONT;
    ENDIF;
    MAD colour, program.local[4], bound.x, colour;
ENDREP;
MOVC bound.y, value.y;
IF GE.y;
    MOV_SAT result.color, colour;
ELSE;
    MOV result.color, -colour;
ENDIF;
END
