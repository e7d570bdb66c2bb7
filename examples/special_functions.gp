# Draws <folder>/special_functions.png from what example_special_functions wrote:
#   gnuplot -e "folder='build/gallery'" examples/special_functions.gp

data = folder.'/special_functions.dat'
set terminal pngcairo size 900,520 font 'DejaVu Sans,11'
set output folder.'/special_functions.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
blue = '#0072B2'
orange = '#D55E00'
sky = '#56B4E9'

set border 3
set tics nomirror
set xrange [0:350]
set xtics 50
set xlabel 'progression score after one year'
set style fill solid 0.35 noborder
set multiplot layout 1,2 title 'Progression of diabetes, 442 patients' font ',15'

set title 'Share at or below a score' font ',13'
set ylabel 'share'
set yrange [0:1]
set key bottom right reverse Left samplen 2
plot data using 1:3:4 with filledcurves lc rgb sky title '95 % limits', \
     data using 1:2 with steps lw 1.2 lc rgb blue title 'measured', \
     data using 1:5 with lines lw 2 lc rgb orange title 'gamma distribution'

set title 'Difference from the gamma distribution' font ',13'
set ylabel 'difference of the shares'
set yrange [-0.12:0.12]
set ytics 0.04
unset key
plot data using 1:($3-$5):($4-$5) with filledcurves lc rgb sky, \
     data using 1:($2-$5) with steps lw 1.2 lc rgb blue, \
     0 with lines lw 2 lc rgb orange
unset multiplot
