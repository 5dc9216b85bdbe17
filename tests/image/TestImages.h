#pragma once
// Resource ids of the pictures in TestImages.rc.

// 5 x 3: rows red, green, blue from the top; the top left pixel is white.
#define ROWS_BITMAP 101
