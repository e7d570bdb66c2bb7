# Draws <folder>/combinations.png from what example_combinations wrote:
#   gnuplot -e "folder='build/gallery'" examples/combinations.gp

data = folder.'/combinations.dat'
set terminal pngcairo size 900,520 font 'DejaVu Sans,11'
set output folder.'/combinations.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
blue = '#0072B2'
orange = '#D55E00'
green = '#009E73'

set border 3
set tics nomirror
set xrange [0:3000]
set xtics ('0' 0, '1,000' 1000, '2,000' 2000, '3,000' 3000)
set rmargin 4
set xlabel 'number of mixtures tested'
set multiplot layout 1,2 title 'Looking for the best of 27,000 mixtures' font ',15'

set title 'One search by Thompson sampling' font ',13'
set ylabel 'hardness (standard deviations of an ingredient)'
set yrange [-8:10]
set ytics 2
set key bottom right reverse Left samplen 2
plot data index 0 using 1:2 with points pt 7 ps 0.3 lc rgb blue notitle, \
     NaN with points pt 7 ps 0.8 lc rgb blue title 'one mixture', \
     data index 0 using 1:3 with lines lw 2 lc rgb 'black' title 'the best hundredth is above'

set title 'Share of the best hundredth found' font ',13'
set ylabel 'share found, mean of 40 searches'
set yrange [0:1]
set ytics 0.2
set key top left
plot data index 1 using 1:2 with lines lw 2.5 lc rgb blue title 'Thompson', \
     data index 1 using 1:3 with lines lw 2 lc rgb orange title 'roulette from 1,000 on', \
     data index 1 using 1:4 with lines lw 2 lc rgb green title 'random'
unset multiplot
