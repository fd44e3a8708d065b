# SPDX-License-Identifier: Apache-2.0
# Usage: gnuplot -e "data='FILE'; picture='FILE.svg'" plot.gp
set terminal svg size 760,380 font "sans-serif,13" background "white"
set output picture
set style data histogram
set style histogram clustered gap 1
set style fill solid noborder
set boxwidth 0.92
set ylabel "ns per pixel, less is better"
set yrange [0:*]
set offsets 0, 0, graph 0.06, 0
set grid ytics linecolor rgb "#dddddd" linetype 1
set border 3
set xtics nomirror scale 0
set ytics nomirror
set key outside top center horizontal Left reverse
label(v) = sprintf(v < 10 ? "%.2f" : "%.1f", v)
plot data using 2:xtic(sprintf("%dx%d", $1, $1)) title "imageblend" linecolor rgb "#1b6ca8", \
     data using 3 title "Halide" linecolor rgb "#6a994e", \
     data using 4 title "by hand with pyrDown and pyrUp" linecolor rgb "#f2a541", \
     data using 5 title "MultiBandBlender" linecolor rgb "#b0b7bf", \
     data using ($0 - 0.3):2:(label($2)) with labels notitle offset 0, 0.6 font ",10", \
     data using ($0 - 0.1):3:(label($3)) with labels notitle offset 0, 0.6 font ",10", \
     data using ($0 + 0.1):4:(label($4)) with labels notitle offset 0, 0.6 font ",10", \
     data using ($0 + 0.3):5:(label($5)) with labels notitle offset 0, 0.6 font ",10"
