# Draws <folder>/kernelpls.png from what example_kernelpls wrote:
#   gnuplot -e "folder='build/gallery'" examples/kernelpls.gp

data = folder.'/kernelpls.dat'
set terminal pngcairo size 900,600 font 'DejaVu Sans,11'
set output folder.'/kernelpls.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
blue = '#0072B2'
orange = '#D55E00'

stats data index 1 using 1:2 nooutput
best = STATS_pos_min_y
error = STATS_min_y

set border 3
set tics nomirror
set multiplot layout 1,2 title 'Diabetes: progression after one year, by kernel PLS' font ',15'

set title sprintf('Test half, %d features', best) font ',13'
set xlabel 'measured progression score'
set ylabel 'predicted progression score'
set xrange [0:350]
set yrange [0:350]
set tics 50
set key top left reverse Left samplen 2
plot x with lines dt 2 lw 1.5 lc rgb 'black' title 'predicted = measured', \
     data index 2 using 1:2 with points pt 7 ps 0.9 lc rgb blue title 'one patient'

set title 'More features do not predict better' font ',13'
set xlabel 'number of features'
set ylabel 'root mean square error'
set xrange [0.5:12.5]
set yrange [40:70]
set xtics 1,1
set ytics 5
set arrow from best,graph 0 to best,error dt 3 lc rgb 'black' nohead
plot data index 1 using 1:2 with linespoints pt 9 ps 1.3 lw 2 lc rgb orange title 'test half', \
     data index 0 using 1:2 with linespoints pt 7 ps 1.1 lw 2 lc rgb blue title 'training half'
unset multiplot
