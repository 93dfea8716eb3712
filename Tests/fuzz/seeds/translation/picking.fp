!!NVfp4.0
# The object's number in the three colour channels, packed and taken apart again.
TEMP id, bytes;
UINT TEMP word, part;
MOV id, program.local[0];
PK4UB.U word.x, id;
SHR.U part.x, word.x, 16;
AND.U part.x, part.x, 255;
AND.U part.y, word.x, 255;
I2F.U bytes.x, part.x;
I2F.U bytes.y, part.y;
MUL bytes.xy, bytes, 0.00390625;
UP4UB id, program.local[1].x;
ADD result.color, id, bytes.xyxy;
END
