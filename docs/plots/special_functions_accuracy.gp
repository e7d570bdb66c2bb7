# Draws <folder>/special_functions_accuracy.png from what bench/special_functions_accuracy.py wrote:
#   gnuplot -e "folder='build/accuracy'" docs/plots/special_functions_accuracy.gp

data = folder.'/special_functions_accuracy.dat'
set terminal pngcairo size 800,600 font 'DejaVu Sans,10'
set output folder.'/special_functions_accuracy.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
set style line 1 lc rgb '#0072B2' lw 1.8         # zvmath
set style line 2 lc rgb '#E69F00' lw 1.3 dt 2    # C library
set style line 3 lc rgb '#009E73' lw 1.3         # GSL
set style line 4 lc rgb '#000000' lw 1.3 dt 3    # Boost
set style line 5 lc rgb '#CC79A7' lw 1.3         # Boost, in double

set border 3
set tics nomirror
set logscale xy
set format x '10^{%T}'
set format y '10^{%T}'
set ylabel 'error in ulp'
set multiplot layout 2,2 title 'Error against the true value' font ',15'

set yrange [0.1:1e5]
set xrange [1e-3:1e6]
set xlabel 'x'
set key top right reverse Left samplen 2
set title 'ln Gamma(x): its zeros are 1 and 2' font ',12'
plot data index 0 using 1:2 with lines ls 1 title 'zvmath', \
     '' index 0 using 1:3 with lines ls 2 title 'C library', \
     '' index 0 using 1:4 with lines ls 3 title 'GSL', \
     '' index 0 using 1:5 with lines ls 4 title 'Boost', \
     '' index 0 using 1:6 with lines ls 5 title 'Boost, in double'
unset key
set title 'Digamma: its zero is 1.46' font ',12'
plot data index 1 using 1:2 with lines ls 1, '' index 1 using 1:4 with lines ls 3, \
     '' index 1 using 1:5 with lines ls 4, '' index 1 using 1:6 with lines ls 5
set title 'Trigamma' font ',12'
set yrange [0.1:100]
plot data index 2 using 1:2 with lines ls 1, '' index 2 using 1:4 with lines ls 3, \
     '' index 2 using 1:5 with lines ls 4, '' index 2 using 1:6 with lines ls 5
set title 'P(a, a): zvmath has values up to a = 593' font ',12'
set yrange [0.1:1e6]
set xrange [1e-2:1e4]
set xlabel 'a'
plot data index 3 using 1:2 with lines ls 1, '' index 3 using 1:4 with lines ls 3, \
     '' index 3 using 1:5 with lines ls 4, '' index 3 using 1:6 with lines ls 5
unset multiplot
