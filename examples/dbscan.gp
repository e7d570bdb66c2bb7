# Draws <folder>/dbscan.png from what example_dbscan wrote:
#   gnuplot -e "folder='build/gallery'" examples/dbscan.gp

data = folder.'/dbscan.dat'
set terminal pngcairo size 900,600 font 'DejaVu Sans,11'
set output folder.'/dbscan.png'

# The colours are those of Okabe and Ito, which colour-blind people can tell apart.
set style line 1 lc rgb '#0072B2' lw 1.2 pt 7 ps 1.1   # circle
set style line 2 lc rgb '#D55E00' lw 1.2 pt 9 ps 1.2   # triangle
set style line 3 lc rgb '#009E73' lw 1.2 pt 5 ps 1.0   # square
set style line 4 lc rgb '#999999' lw 1.2 pt 2 ps 0.9   # cross

set xrange [-5:5.5]
set yrange [-4.5:5.3]
set xtics 2 nomirror
set ytics 2 nomirror
set border 3
set xlabel 'principal component 1'
set key top right reverse Left samplen 1.5

# A row's value where its column `c` is k, nothing elsewhere.
only(c, k, value) = column(c) == k ? value : NaN

set multiplot layout 1,2 margins 0.07,0.98,0.1,0.86 spacing 0.06 \
    title '178 wines by 13 chemical measurements' font ',15'
set title 'What DBSCAN finds' font ',13'
set ylabel 'principal component 2'
plot data using 1:(only(3, -1, $2)) ls 4 title 'noise', \
     for [k=0:2] data using 1:(only(3, k, $2)) ls k+1 title sprintf('cluster %d', k), \
     data using 1:(only(5, 1, $2)) pt 12 ps 3 lw 2.5 lc rgb 'black' title 'medoid'
set title 'The cultivars, which it was not told' font ',13'
unset ylabel
plot for [k=0:2] data using 1:(only(4, k, $2)) ls k+1 title sprintf('cultivar %d', k)
unset multiplot
