UTF-8

1 #4 AllSolutions
//#TAGS
//#underpromotion to Bishop
//#underpromotion to Knight
//#underpromotion to Rook
//!VARIANTS
//!{Black promotes to bishop} 1. a6-a7 a2:b1B 2. a7:b8B Bb1:f5 3. Qa1-e1 Bf5-h7 4. Qe1-e3
//!{Black promotes to knight} 1. a6-a7 a2:b1N 2. a7:b8N Nb1-c3 3. Qa1-b1 Nc3-d5 4. Qb1-d3
//!{Black promotes to queen} 1. a6-a7 a2:b1Q 2. a7:b8Q Qb1:f5 3. Rh4:f4 Qf5-e4 4. Rf4:e4
//!{Black promotes to rook} 1. a6-a7 a2:b1R 2. a7:b8R Rb1-e1 3. Qa1-b1 Re1-h1 4. Qb1-d3
//!{Main variant} 1. a6-a7 Qb8-e5 2. Bd8:e7 Qe5-b8 3. a7:b8Q a2:b1N 4. Rh4:f4
//!ENDVARIANTS
{
	Description: Yarosh, Leonid, 1983
	FEN: Bq1B1K2/3PpN2/P3Pp2/P1p2P2/2Pk1b1R/1p6/pN1P1P2/QR6
	Answer: a6-a7
}
2 #6 AllSolutions
//#TAGS
//#castling
//#castling long
//!VARIANTS
//!{Main variant} 1. Ng3-h5 Bd1:h5 2. Bf5-d7 Ke8-d8 3. Bd7-g4 Kd8-e8 4. 0-0-0 f7-f5 5. Bg4:h5 g7-g6 6. Bh5:g6
//!ENDVARIANTS
{
	Description: Wenda, Klaus, 1966
	FEN: 4k3/1pp2pp1/8/b1B1pB2/rp6/p5N1/3R4/R2bK3
	Answer: Ng3-h5
}
3 #7 AllSolutions
//!VARIANTS
//!{Main variant} 1. f3-f4 Rc7-c8 2. Bh3-g2 Rc8-c4 3. Bg2-d5 Rd6:d7 4. Bd5:c4 Rd7-d1 5. Kg1-g2 Rd1-g1 6. Kg2:g1 h5-h4 7. Na2:c3
//!ENDVARIANTS
{
	Description: Chéron, André, 1933
	FEN: 8/2rNp3/3rP1p1/p4pPp/k7/1Rp1pP1B/N1P1P3/6K1
	Answer: f3-f4
}
4 #7 AllSolutions
//!VARIANTS
//!{Main variant} 1. Bd3-b1 Kc1-d1 2. Qh6-d6 Kd1-c1 3. Qd6-f4 Kc1-d1 4. Qf4-d4 Kd1-c1 5. Qd4-e3 Kc1-d1 6. Qe3-d3 Kd1-c1 7. Qd3-c2
//!ENDVARIANTS
{
	Description: Dawson, Thomas Rayner, 1943
	FEN: 8/8/7Q/5P2/1pP5/pP1B4/P2nppp1/K1k1bqrb
	Answer: Bd3-b1
}
5 #9 AllSolutions
//!VARIANTS
//!{Main variant} 1. Re4-a4 Kd8-e8 2. Ra4-h4 Rd5-e5 3. Ke1-d2 Ke8-d8 4. Rh4-a4 Re5-d5 5. Kd2-e3 Kd8-e8 6. Ra4-h4 Rd5-e5 7. Ke3-d4 Ke8-d8 8. Kd4:e5 Kd8-e8 9. Rh4-h8
//!ENDVARIANTS
{
	Description: Dawson, Thomas Rayner, 1923
	FEN: 3k4/2p2p2/2P2P2/3r4/4R3/8/8/4K3
	Answer: Re4-a4
}
6 #11 AllSolutions
//!VARIANTS
//!{Main variant} 1. Nc2-e1 Bc5-d4 2. Ne1-f3 Bd4-f6 3. Nf3-d2 Bf6-h4 4. Nd2-b3 Bh4-f6 5. Nb3-a5 Bf6-e5 6. Na5-c6 Be5-c7 7. Nc6:e7 Bc7-b8 8. Ne7-f5 Bb8-f4 9. e6-e7 Bf4-h6 10. Nf5-d6 Bh6-f8 11. Nd6-f7
//!ENDVARIANTS
{
	Description: Dawson, Thomas Rayner, 1931
	FEN: 7k/4p2P/4P1K1/2b5/8/8/2N5/8
	Answer: Nc2-e1
}
7 #12 AllSolutions
//!VARIANTS
//!{Main variant} 1. e3-e4 Kd5-d4 2. Kf3-f2 Kd4-e5 3. b4-b5 Ke5-d4 4. b5-b6 Kd4:c5 5. b6-b7 Kc5-d6 6. b7-b8Q Kd6-d7 7. e4-e5 f6:e5 8. f5-f6 Kd7-e6 9. Qb8-d8 e5-e4 10. d3:e4 Ke6-f7 11. Qd8-e7 Kf7-g8 12. Qe7-g7
//!ENDVARIANTS
{
	Description: Dawson, Thomas Rayner, 1946 (published with 1.Kf3-e2 alone)
	FEN: 8/8/2p2p2/2Pk1Pp1/1P4P1/2pPPK2/2P5/8
	Answer: e3-e4, Kf3-e2
}
