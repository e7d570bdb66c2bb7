# Draws <folder>/roots_accuracy.png from what bench/roots_accuracy.py wrote:
#   gnuplot -e "folder='build/accuracy'" docs/plots/roots_accuracy.gp

data = folder.'/roots_accuracy.dat'
set terminal pngcairo size 800,600 font 'DejaVu Sans,10'
set output folder.'/roots_accuracy.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
set style line 1 lc rgb '#0072B2' lw 1.8         # zvmath
set style line 2 lc rgb '#009E73' lw 1.3         # GSL
set style line 3 lc rgb '#000000' lw 1.3 dt 3    # Boost
set style line 4 lc rgb '#E69F00' lw 1.3 dt 2    # Eigen

set border 3
set tics nomirror
set logscale xy
set format x '10^{%T}'
set format y '10^{%T}'
set xrange [1e-12:1]
set yrange [1e-17:1e-3]
set xtics 1e3
set ytics 1e3
set ylabel 'error / largest root'
set multiplot layout 2,2 title 'Error of polynomial roots' font ',15'

set key top right reverse Left samplen 2
set xlabel 'distance of two roots'
set title 'Quadratic' font ',12'
plot data index 0 using 1:2 with lines ls 1 title 'zvmath', \
     '' index 0 using 1:3 with lines ls 2 title 'GSL', \
     '' index 0 using 1:4 with lines ls 3 title 'Boost', \
     '' index 0 using 1:5 with lines ls 4 title 'Eigen'
unset key
set title 'Cubic' font ',12'
plot data index 1 using 1:2 with lines ls 1, '' index 1 using 1:3 with lines ls 2, \
     '' index 1 using 1:4 with lines ls 3, '' index 1 using 1:5 with lines ls 4
set title 'Quartic' font ',12'
plot data index 2 using 1:2 with lines ls 1, '' index 2 using 1:3 with lines ls 2, \
     '' index 2 using 1:4 with lines ls 3, '' index 2 using 1:5 with lines ls 4
set title 'Quartic, roots nearly symmetric' font ',12'
set xlabel 'distance from symmetry'
plot data index 3 using 1:2 with lines ls 1, '' index 3 using 1:3 with lines ls 2, \
     '' index 3 using 1:4 with lines ls 3, '' index 3 using 1:5 with lines ls 4
unset multiplot
