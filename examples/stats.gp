# Draws <folder>/stats.png from what example_stats wrote:
#   gnuplot -e "folder='build/gallery'" examples/stats.gp

data = folder.'/stats.dat'
set terminal pngcairo size 900,600 font 'DejaVu Sans,11'
set output folder.'/stats.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
blue = '#0072B2'
orange = '#D55E00'
green = '#009E73'

set border 3
set tics nomirror
set multiplot layout 1,2 \
    title 'Old Faithful: some waiting times doubled on purpose' font ',15'

set title 'Two lines, learnt with a tenth doubled' font ',13'
set xlabel 'length of the eruption (min)'
set ylabel 'waiting time to the next (min)'
set xrange [1.5:5.25]
set yrange [0:220]
set key top left reverse Left samplen 2
plot data index 0 using 1:2 with points pt 7 ps 0.8 lc rgb '#999999' title 'as measured', \
     data index 1 using 1:2 with points pt 2 ps 1.0 lw 1.5 lc rgb 'black' title 'doubled', \
     data index 2 using 1:2 with lines lw 2.5 lc rgb orange title 'least squares', \
     data index 3 using 1:2 with lines lw 2.5 lc rgb blue title 'median of slopes'

set title 'Median of slopes, scored on other eruptions' font ',13'
set xlabel 'waiting times doubled (%)'
set ylabel 'score (min)'
set xrange [-1:35]
set yrange [0:50]
plot data index 4 using 1:2 with linespoints pt 9 ps 1.3 lw 2 lc rgb orange title 'RMSE', \
     data index 5 using 1:2 with linespoints pt 5 ps 1.0 lw 2 lc rgb green title 'mean absolute deviation', \
     data index 6 using 1:2 with linespoints pt 7 ps 1.1 lw 2 lc rgb blue title 'median absolute deviation'
unset multiplot
