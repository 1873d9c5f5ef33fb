UTF-8

1 #3 AllSolutions
//!VARIANTS
//!{Main variant} 1. Kf1-e2 Bg8-h7 2. Rf6-f3 Ke5:e4 3. d2-d3
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1903
	FEN: 4r1b1/1p4B1/pN2pR2/RB2k3/1P2N2p/2p3b1/n2P1p1r/5K1n
	Answer: Kf1-e2
}
2 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Qh5-c5 Bh8-e5 2. Qc5-c1
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1857
	FEN: 4brrb/8/2p4P/7Q/3p1kpP/3P1pN1/5K2/8
	Answer: Qh5-c5
}
3 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Qh5-a5 Bf8-h6 2. Qa5:b4
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1860
	FEN: 2brrb2/8/p7/7Q/1p1kpPp1/1P1pN1K1/3P4/8
	Answer: Qh5-a5
}
4 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Qd4-g4 f7-f5 2. g5:f6
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1867
	FEN: 5R2/1N3p2/3pk3/6PR/3Q4/B3K3/8/8
	Answer: Qd4-g4
}
5 #2 AllSolutions GUICHECK 2
//#TAGS
//#castling
//#castling short
//!VARIANTS
//!{Main variant} 1. Qa7-f2 Kc1-b1 2. 0-0
//!ENDVARIANTS
{
	Description: Schöpfer, G., 1927
	FEN: 8/Q7/8/8/8/8/8/2k1K2R
	Answer: Qa7-f2
}
6 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Rf5-f7 Bc5-f8 2. Nf1:e3
//!ENDVARIANTS
{
	Description: Kubbel, Leonid, 1928
	FEN: 4K2R/8/6B1/2b2Rp1/Q3N1k1/3pqn1p/8/5N1r
	Answer: Rf5-f7
}
7 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Ne2-f4 Kf5:f4 2. Qe7-g5
//!ENDVARIANTS
{
	Description: Mansfield, Comins, 1929
	FEN: 8/4Q3/8/4bk1K/8/8/4N2p/7B
	Answer: Ne2-f4
}
8 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Ng3-e4 Kd5-e6 2. Qf8-f7
//!ENDVARIANTS
{
	Description: Abdurahmanović, Fadil, 1957
	FEN: 5QKB/2P5/8/3k4/8/1R4N1/8/8
	Answer: Ng3-e4
}
9 #2 AllSolutions
//!VARIANTS
//!{Main variant} 1. Qc6-g2 Nc3-d5 2. Qg2-e2
//!ENDVARIANTS
{
	Description: Speckmann, Werner, 1982
	FEN: 8/8/2Q5/8/3N4/1pn5/3p4/4k1K1
	Answer: Qc6-g2
}
10 #3 AllSolutions
//!VARIANTS
//!{Main variant} 1. Nf2-g4 Kg2-h3 2. Ng4-h2 f4-f3 3. Rg8-h8
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1857
	FEN: 6R1/2K5/8/8/5p2/6p1/1Q3Nk1/8
	Answer: Nf2-g4
}
11 #3 AllSolutions
//!VARIANTS
//!{Main variant} 1. Rg7:g3 Bf2:g3 2. Ne1-f3 Bg3-h4 3. g2-g4
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1859
	FEN: 8/6R1/7p/5K1k/8/6p1/5bPP/4N3
	Answer: Rg7:g3
}
12 #3 AllSolutions
//#TAGS
//#underpromotion to Knight
//!VARIANTS
//!{Main variant} 1. e7-e8N Kg7:h8 2. d7-d8N Ng5-h7 3. Nd8-f7
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1876
	FEN: 2K4N/3PP1k1/5N2/6n1/8/8/8/8
	Answer: e7-e8N
}
13 #3 AllSolutions
//!VARIANTS
//!{Main variant} 1. Rg2-a2 Rg1-a1 2. Bg6-b1 Ra1:b1 3. Nh4-g6
//!ENDVARIANTS
{
	Description: Lyris, Basil, 1943
	FEN: 7k/7P/6BK/8/7N/8/6R1/6r1
	Answer: Rg2-a2
}
14 #3 AllSolutions
//!VARIANTS
//!{Main variant} 1. e6-e7 Nd8-f7 2. Qb3-e6 Ke5-f4 3. Qe6-e4
//!ENDVARIANTS
{
	Description: Millour, R. J. & Kerhuel, M., 1966
	FEN: 3nR3/3n4/2P1P3/4kBp1/N2N2p1/PQ4p1/6p1/6K1
	Answer: e6-e7
}
15 #4 NoMirror AllSolutions GUICHECK 4
//!VARIANTS
//!{Main variant} 1. Qd4-g1 f7-f5 2. Bg3-f2 g6-g5 3. Bf2:b6 Na8-c7 4. Qg1-c5
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1856
	FEN: n7/3p1p2/NpkNp1p1/1p2P3/3Q4/6B1/b7/4K3
	Answer: Qd4-g1
}
16 #4 AllSolutions
//!VARIANTS
//!{Main variant} 1. h2:g3 Bf2-b6 2. Rg7-g4 Bb6-d8 3. Rg4-h4 Bd8:h4 4. g3-g4
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1859
	FEN: 8/6R1/7p/5K1k/8/6p1/5bPP/8
	Answer: h2:g3
}
17 #4 AllSolutions
//!VARIANTS
//!{Main variant} 1. Nb7-d6 Be7:d6 2. Qf2-e2 Bd6-f8 3. Bb5-d3 Bf8-h6 4. Qe2-c2
//!ENDVARIANTS
{
	Description: Kohtz, Johannes & Kockelkorn, Carl, 1905
	FEN: 8/1N2b3/8/1B6/K2P4/2k1P3/5Q2/8
	Answer: Nb7-d6
}
18 #4 AllSolutions
//!VARIANTS
//!{Main variant} 1. Ke5-d4 Ke8-f8 2. Qc7-d6 Kf8-g8 3. Qd6-g6 Kg8-f8 4. Qg6-f7
//!ENDVARIANTS
{
	Description: Zepler, Erich, 1929
	FEN: r3k3/2Qp3R/1p6/1b2K3/4p3/8/5p2/8
	Answer: Ke5-d4
}
19 #4 AllSolutions
//!VARIANTS
//!{Main variant} 1. Ba8-h1 0-0 2. Qa4-a8 h7-h6 3. Qa8:f8 Kg8:f8 4. Ra1-a8
//!ENDVARIANTS
{
	Description: Johandl, Alois, 1959
	FEN: B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3
	Answer: Ba8-h1
}
20 #4 NoMirror AllSolutions GUICHECKBESTDEFENCE 4
//#TAGS
//#underpromotion to Bishop
//#underpromotion to Knight
//#underpromotion to Rook
//!VARIANTS
//!{Main variant} 1. a6-a7 Qb8-e5 2. Bd8:e7 Qe5-b8 3. a7:b8Q a2:b1N 4. Rh4:f4
//!ENDVARIANTS
{
	Description: Yarosh, Leonid, 1983
	FEN: Bq1B1K2/3PpN2/P3Pp2/P1p2P2/2Pk1b1R/1p6/pN1P1P2/QR6
	Answer: a6-a7
}
21 #5 AllSolutions
//!VARIANTS
//!{Main variant} 1. Qa3-f8 Kf1-e1 2. Qf8-d6 Ke1-f1 3. Qd6-f6 Kf1-e1 4. Qf6-d4 Ke1-f1 5. Qd4-g1
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1857
	FEN: 8/8/8/8/8/Q7/4p3/5k1K
	Answer: Qa3-f8
}
22 #5 AllSolutions
//!VARIANTS
//!{Main variant} 1. b2-b4 Bd8-g5 2. Rb5-f5 Bg5-f4 3. Rf5:f4 Rc8-c5 4. b4:c5 Na8-c7 5. Rf4-f1
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1861
	FEN: n1rb4/1p3p1p/1p6/1R5K/8/p3p1PN/1PP1R3/N6k
	Answer: b2-b4
}
23 #5 AllSolutions
//!VARIANTS
//!{Main variant} 1. Rh3-h6 Bg8-h7 2. g4-g5 Kg7-h8 3. Bd4:f6 Kh8-g8 4. Rh6-h5 Bh7-b1 5. Rh5-h8
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1868
	FEN: 6b1/4Kpk1/5r2/8/3B2P1/7R/8/8
	Answer: Rh3-h6
}
24 #5 AllSolutions
//!VARIANTS
//!{Main variant} 1. Qg4-b4 Rh8-b8 2. Qb4:b8 Bh4-d8 3. Rg1-g6 Bd8-f6 4. Rg6:f6 Ka6-a5 5. Qb8-b6
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1878
	FEN: 7r/3B4/k7/8/6Qb/8/Kn6/6R1
	Answer: Qg4-b4
}
25 #6 AllSolutions
//!VARIANTS
//!{Main variant} 1. Nf5-h6 Kh1-h2 2. Ne2-f4 Na6-b4 3. Nh6-g4 Kh2-h1 4. Nf4-e2 Nb4-d3 5. Kf2-f1 h7-h5 6. Ne2-g3
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1858
	FEN: 8/4p2p/nn6/2p2N2/8/8/4NK2/7k
	Answer: Nf5-h6
}
26 #6 AllSolutions
//!VARIANTS
//!{Main variant} 1. Rb3-c3 Rb8-c8 2. Na8-c7 Rc8:c7 3. Rc3-d3 Rc7-g7 4. Be3-g5 Rg7-d7 5. Rd3:d7 Kh1-g1 6. Rd7-d1
//!ENDVARIANTS
{
	Description: Chéron, André, 1936
	FEN: Nr6/8/8/8/7P/1R2B1K1/8/7k
	Answer: Rb3-c3
}
27 #7 AllSolutions
//!VARIANTS
//!{Main variant} 1. b4-b5 a6:b5 2. d4-d5 d7-d6 3. e3-e4 b5-b4 4. c3:b4 Kd3-d4 5. Kd1-e2 Kd4-e5 6. Bd2-g5 Ke5-d4 7. Bg5-f6
//!ENDVARIANTS
{
	Description: Loyd, Samuel, 1857
	FEN: 8/3p4/p7/8/1P1P4/1PPkPP2/3B4/3K4
	Answer: b4-b5
}
28 #8 AllSolutions
//!VARIANTS
//!{Main variant} 1. Ke1-d2 e6-e5 2. Kd2-c3 h5-h4 3. Kc3-b4 h4-h3 4. Kb4-a5 b5-b4 5. Ka5-b6 b4-b3 6. c5-c6 d7:c6 7. Kb6-c7 c6-c5 8. d6-d7
//!ENDVARIANTS
{
	Description: Dawson, Thomas Rayner, 1949
	FEN: 4k3/3pPp2/3PpP2/1pP3Pp/4P3/8/1P5P/4K3
	Answer: Ke1-d2
}
