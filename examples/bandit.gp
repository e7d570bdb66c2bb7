# Draws <folder>/bandit.png from what example_bandit wrote:
#   gnuplot -e "folder='build/gallery'" examples/bandit.gp

data = folder.'/bandit.dat'
set terminal pngcairo size 900,520 font 'DejaVu Sans,11'
set output folder.'/bandit.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
blue = '#0072B2'
orange = '#D55E00'
green = '#009E73'

set border 3
set tics nomirror
set logscale x
set xrange [1:10000]
set xtics ('1' 1, '10' 10, '100' 100, '1,000' 1000, '10,000' 10000)
set xlabel 'number of tries'
set multiplot layout 1,2 title 'Finding the best of 20 settings of a machine' font ',15'

set title 'Regret' font ',13'
set ylabel 'good parts missed by not taking the best setting'
set yrange [0:250]
set ytics 50
set key top left reverse Left samplen 2
plot data index 0 using 1:2 with lines lw 2 lc rgb green title 'uniform', \
     data index 0 using 1:4 with lines lw 2 lc rgb orange title 'roulette', \
     data index 0 using 1:6 with lines lw 2.5 lc rgb blue title 'Thompson', \
     data index 1 using 1:2 with lines lw 2 dt 2 lc rgb 'black' title 'least slope'

set title 'Tries at the best setting' font ',13'
set ylabel 'share of all tries so far'
set yrange [0:1]
set ytics 0.2
plot data index 0 using 1:7 with lines lw 2.5 lc rgb blue title 'Thompson', \
     data index 0 using 1:5 with lines lw 2 lc rgb orange title 'roulette', \
     data index 0 using 1:3 with lines lw 2 lc rgb green title 'uniform'
unset multiplot
